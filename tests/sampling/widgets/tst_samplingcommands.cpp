#include "SamplingWidgetFixture.h"

#include "monitor/EquipmentMonitor.h"
#include "platform/EventLog.h"
#include "platform/TcpSocketPort.h"
#include "sampling/widgets/SamplingCommands.h"

#include <QLineEdit>
#include <QSignalSpy>
#include <QTcpServer>

namespace {

// A monitor whose sampling object is the real one, with a TCP link, as the program makes
// it.
struct MonitorCase
{
    MonitorCase()
        : eventLog(QDir(fixture.folder.path()).filePath(QStringLiteral("events.log")),
                   fixture.clock)
    {
        MonitorServices services{
            .errors = fixture.errors,
            .eventLog = eventLog,
            .clock = fixture.clock,
            .makeSocket = [] { return std::make_unique<TcpSocketPort>(); },
            .makeSampling = [this] { return fixture.makeSampling(); },
        };
        monitor = std::make_unique<EquipmentMonitor>(std::move(services));
        monitor->Initialize(fixture.language, 0);
    }

    bool configure()
    {
        return SamplingCommands::ConfigureSampling(*monitor, fixture.language, fixture.services(),
                                                   fixture.support);
    }

    SamplingProperties &sampling()
    {
        return dynamic_cast<SamplingProperties &>(monitor->sampling());
    }

    SamplingWidgetFixture fixture;
    EventLog eventLog;
    std::unique_ptr<EquipmentMonitor> monitor;
};

} // namespace

// The monitor's SPC sampling command: refused with the product message where the
// database cannot be used, otherwise the dialog on the monitor's own settings, with the
// monitor's display following a confirmed change.
class TestSamplingCommands : public QObject
{
    Q_OBJECT

private slots:
    void withoutTheDatabaseProductTheUserIsTold()
    {
        MonitorCase test;
        SamplingWidgetFixture &fixture = test.fixture;
        fixture.libraryInstalled = false;
        fixture.language.setText(4785, QStringLiteral("Bitte an den Administrator wenden."));
        {
            ModalAnswer dialog(QStringLiteral("dlgSampling"), [](QDialog *) {});
            QVERIFY(!test.configure());
            QTest::qWait(50);
            QVERIFY(!dialog.seen());
        }
        QCOMPARE(fixture.messages.count(), 1);
        QCOMPARE(fixture.messages.last().title, QStringLiteral("SPC Sampling"));
        QCOMPARE(fixture.messages.last().text,
                 QStringLiteral("The following product is not yet installed:\r\n\r\n"
                                "Meridal Ambrel\r\n\r\nBitte an den Administrator wenden."));
    }

    void okCopiesBackAndRefreshesTheMonitor()
    {
        MonitorCase test;
        QSignalSpy refreshes(test.monitor.get(), &EquipmentMonitor::displayRefreshRequested);
        QSignalSpy itemStates(test.monitor.get(), &EquipmentMonitor::displayItemsEnabledChanged);
        {
            // Cancelled, nothing is copied and the monitor is left alone.
            ModalAnswer dialog(QStringLiteral("dlgSampling"), [](QDialog *sampling) {
                tick(sampling, "chkEnableSampling");
                click(sampling, "CancelButton");
            });
            QVERIFY(!test.configure());
            QVERIFY(dialog.seen());
            QVERIFY(!test.sampling().Enabled());
            QCOMPARE(refreshes.count(), 0);
            QCOMPARE(itemStates.count(), 0);
        }

        QString shownPart;
        ModalAnswer dialog(QStringLiteral("dlgSampling"), [&](QDialog *sampling) {
            shownPart = control<QLineEdit>(sampling, "txtPart")->text();
            tick(sampling, "chkEnableSampling");
            retype(sampling, "txtPart", QStringLiteral("BRK-200"));
            tick(sampling, "chkPartReselect");
            click(sampling, "OKButton");
        });
        test.sampling().setPart(QStringLiteral("BRK-100"));
        QVERIFY(test.configure());
        QVERIFY(dialog.seen());
        QCOMPARE(shownPart, QStringLiteral("BRK-100"));
        QVERIFY(test.sampling().Enabled());
        QVERIFY(test.monitor->SPCSamplingEnabled());
        QCOMPARE(test.sampling().Part(), QStringLiteral("BRK-200"));
        QVERIFY(test.sampling().AllowPartReselect());
        QCOMPARE(refreshes.count(), 1);
        QCOMPARE(itemStates.count(), 1);
        QCOMPARE(itemStates.last().first().toBool(), true);
        QVERIFY(test.fixture.errors.isEmpty());
    }

    void aCollectingMonitorKeepsItsControlsLocked()
    {
        QTcpServer powerSupply;
        QVERIFY(powerSupply.listen(QHostAddress::LocalHost));
        MonitorCase test;
        QVERIFY(test.monitor->Load(
            QStringLiteral(
                "<Configuration><Equipment Name=\"Line 2\" Settings=\"IP:127.0.0.1:%1\"/>"
                "</Configuration>")
                .arg(powerSupply.serverPort())));
        test.monitor->StartStop();
        QVERIFY(test.monitor->DriverState() >= 2);
        QVERIFY(!test.monitor->displayItemsEnabled());
        QVERIFY(powerSupply.waitForNewConnection(5000));

        QSignalSpy itemStates(test.monitor.get(), &EquipmentMonitor::displayItemsEnabledChanged);
        ModalAnswer dialog(QStringLiteral("dlgSampling"),
                           [](QDialog *sampling) { click(sampling, "OKButton"); });
        QVERIFY(test.configure());
        QVERIFY(dialog.seen());
        QCOMPARE(itemStates.count(), 1);
        QCOMPARE(itemStates.last().first().toBool(), false);
        test.monitor->StartStop();
        QCOMPARE(test.monitor->DriverState(), 1);
    }
};

CORVANE_TEST_SUITE(TestSamplingCommands)
#include "tst_samplingcommands.moc"

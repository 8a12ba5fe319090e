#include "DialogFixture.h"
#include "MonitorFixture.h"
#include "WhenShown.h"

#include "dialogs/MonitorCommands.h"
#include "dialogs/dlgDataLogging.h"
#include "dialogs/dlgIPSetup.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>

// The monitor's Configure commands: each opens its dialog modally with the monitor's
// values and copies the answer back only when the user confirms.
class TestMonitorCommands : public QObject
{
    Q_OBJECT

private slots:
    void configureEquipmentCopiesBackOnlyOnOk()
    {
        DialogFixture dialogs;
        MonitorFixture fixture;
        fixture.configure(QStringLiteral("IP:10.0.0.5:1000"));

        QStringList shown;
        whenShown<dlgIPSetup>([&](dlgIPSetup *dialog) {
            for (const char *name : {"txtName", "txtHost", "txtPort"})
                shown.append(control<QLineEdit>(dialog, name)->text());
            retype(control<QLineEdit>(dialog, "txtName"), QStringLiteral("Press 7"));
            retype(control<QLineEdit>(dialog, "txtPort"), QStringLiteral("502"));
            click(dialog, "OKButton");
        });
        QVERIFY(MonitorCommands::ConfigureEquipment(*fixture.monitor, dialogs.language,
                                                    dialogs.services()));
        QCOMPARE(shown, (QStringList{"Line 4", "10.0.0.5", "1000"}));
        QCOMPARE(fixture.monitor->configurationName(), QStringLiteral("Press 7"));
        QCOMPARE(fixture.monitor->address(), QStringLiteral("IP:10.0.0.5:502"));

        // A refused OK followed by Cancel changes nothing.
        whenShown<dlgIPSetup>([&](dlgIPSetup *dialog) {
            retype(control<QLineEdit>(dialog, "txtName"), QStringLiteral("Press 8"));
            retype(control<QLineEdit>(dialog, "txtHost"), QString());
            click(dialog, "OKButton");
            click(dialog, "CancelButton");
        });
        QVERIFY(!MonitorCommands::ConfigureEquipment(*fixture.monitor, dialogs.language,
                                                     dialogs.services()));
        QCOMPARE(dialogs.messages.count(), 1);
        QCOMPARE(fixture.monitor->configurationName(), QStringLiteral("Press 7"));
        QCOMPARE(fixture.monitor->address(), QStringLiteral("IP:10.0.0.5:502"));
        QVERIFY(dialogs.errors.isEmpty());
    }

    void configureDataLoggingCopiesBackAChange()
    {
        DialogFixture dialogs;
        MonitorFixture fixture;
        // Switched off, with a file kept from before.
        fixture.configure(QStringLiteral("IP:10.0.0.5:1000"), false);
        const QString path = fixture.dataLogPath();

        bool wasEnabled = true;
        whenShown<dlgDataLogging>([&](dlgDataLogging *dialog) {
            wasEnabled = control<QCheckBox>(dialog, "chkEnabled")->isChecked();
            tick(dialog, "chkEnabled");
            click(dialog, "OKButton");
        });
        QVERIFY(MonitorCommands::ConfigureDataLogging(*fixture.monitor, dialogs.language,
                                                      dialogs.services()));
        QVERIFY(!wasEnabled);
        QVERIFY(dialogs.chooser.requests.isEmpty());
        QVERIFY(fixture.monitor->configuration().dataLoggingEnabled);
        QCOMPARE(fixture.monitor->configuration().dataLogFile, path);

        // OK without a change: nothing to save.
        whenShown<dlgDataLogging>([&](dlgDataLogging *dialog) { click(dialog, "OKButton"); });
        QVERIFY(!MonitorCommands::ConfigureDataLogging(*fixture.monitor, dialogs.language,
                                                       dialogs.services()));

        // Cancel after switching off: still on.
        whenShown<dlgDataLogging>([&](dlgDataLogging *dialog) {
            tick(dialog, "chkEnabled");
            click(dialog, "CancelButton");
        });
        QVERIFY(!MonitorCommands::ConfigureDataLogging(*fixture.monitor, dialogs.language,
                                                       dialogs.services()));
        QVERIFY(fixture.monitor->configuration().dataLoggingEnabled);
        QCOMPARE(fixture.monitor->configuration().dataLogFile, path);
        QVERIFY(dialogs.errors.isEmpty());
    }
};

QTEST_MAIN(TestMonitorCommands)
#include "tst_monitorcommands.moc"

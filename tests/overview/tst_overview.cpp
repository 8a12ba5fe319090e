// The hall overview offscreen: a tile per welder in each state, its counts and colours
// found by object name, a click that asks for the welder's tab.

#include "MonitorFixture.h"
#include "SampleWelds.h"

#include "monitor/SamplingSeam.h"
#include "overview/widgets/OverviewPage.h"
#include "overview/widgets/WelderTile.h"
#include "stats/widgets/BgrColor.h"

#include <QLabel>
#include <QSignalSpy>
#include <QTest>

namespace {

QLabel *label(WelderTile *tile, const char *name)
{
    return tile->findChild<QLabel *>(QLatin1String(name));
}

QColor background(QWidget *widget)
{
    return widget->palette().color(QPalette::Window);
}

// Sampling whose outbox holds `queued` subgroups and whose next period breaks `pending`.
class WaitingSampling : public NullSampling
{
public:
    int backlog() const override { return queued; }
    QList<RuleViolation> takeRuleViolations() override { return std::exchange(pending, {}); }

    int queued = 0;
    QList<RuleViolation> pending;
};

} // namespace

class TestOverview : public QObject
{
    Q_OBJECT

private slots:
    void tilesShowEachWelder()
    {
        MonitorFixture stopped, inside, breaking;
        stopped.configure(QStringLiteral("IP:127.0.0.1:1001"));
        for (MonitorFixture *f : {&inside, &breaking}) {
            f->clock.set(QDateTime(QDate(2026, 3, 2), QTime(10, 0)));
            f->configure();
            f->monitor->StartStop();
            f->socket->accept();
        }
        // Weld time always beyond its upper specification limit, energy always beyond its
        // upper warning limit.
        for (const auto &dataset : breaking.monitor->datasets()) {
            if (dataset->ID == 1) {
                dataset->LimitFlags = Dataset::kUpperSpecLimit;
                dataset->UpperSpecLimit = -1;
            } else if (dataset->ID == 2) {
                dataset->LimitFlags = Dataset::kUpperWarningLimit | Dataset::kUpperSpecLimit;
                dataset->UpperWarningLimit = -1;
                dataset->UpperSpecLimit = 1e9;
            }
        }

        ManualClock clock;
        clock.set(QDateTime(QDate(2026, 3, 2), QTime(10, 0, 40)));
        qlxLanguage language;
        OverviewPage page(clock, language);
        page.resize(1920, 1080);
        page.addWelder(*stopped.monitor);
        page.addWelder(*inside.monitor);
        page.addWelder(*breaking.monitor);
        page.show();
        QVERIFY(QTest::qWaitForWindowExposed(&page));

        inside.socket->deliver(SampleWelds::stream(4));
        breaking.socket->deliver(SampleWelds::stream(3));
        QCoreApplication::processEvents();

        WelderTile *stoppedTile = page.tile(stopped.monitor->identifier());
        WelderTile *insideTile = page.tile(inside.monitor->identifier());
        WelderTile *breakingTile = page.tile(breaking.monitor->identifier());
        QVERIFY(stoppedTile && insideTile && breakingTile);
        QCOMPARE(stoppedTile->objectName(),
                 QStringLiteral("tile:") + stopped.monitor->identifier());

        QCOMPARE(label(stoppedTile, "lblLinkState")->text(), QStringLiteral("Stopped"));
        QCOMPARE(label(insideTile, "lblLinkState")->text(), QStringLiteral("Connected"));
        QVERIFY(background(stoppedTile) != background(insideTile));
        QVERIFY(label(insideTile, "lblWelds")->text().startsWith(QStringLiteral("4 welds")));
        QVERIFY(label(breakingTile, "lblWelds")->text().startsWith(QStringLiteral("3 welds")));
        QVERIFY(label(stoppedTile, "lblLastWeld")->text().endsWith(QStringLiteral("----")));
        QVERIFY(!label(insideTile, "lblLastWeld")->text().endsWith(QStringLiteral("----")));

        QLabel *weldTime = label(breakingTile, "lblCharacteristic1");
        QLabel *energy = label(breakingTile, "lblCharacteristic2");
        QLabel *distance = label(breakingTile, "lblCharacteristic3");
        QVERIFY(weldTime->text().endsWith(QStringLiteral("3 / 0")));
        QVERIFY(energy->text().endsWith(QStringLiteral("0 / 3")));
        QCOMPARE(background(weldTime), BgrColor::toColor(BgrColor::kRed));
        QCOMPARE(background(energy), BgrColor::toColor(BgrColor::kYellow));
        QVERIFY(background(distance) != BgrColor::toColor(BgrColor::kGreen));
        QVERIFY(label(insideTile, "lblCharacteristic1")->text().endsWith(QStringLiteral("0 / 0")));

        // An hour later the welds have left the hourly count.
        clock.set(clock.now().addSecs(3700));
        insideTile->refresh();
        QVERIFY(label(insideTile, "lblWelds")->text().startsWith(QStringLiteral("0 welds")));

        QSignalSpy chosen(&page, &OverviewPage::welderChosen);
        QTest::mouseClick(breakingTile, Qt::LeftButton);
        QCOMPARE(chosen.size(), 1);
        QCOMPARE(chosen.first().first().toString(), breaking.monitor->identifier());
    }

    // A welder whose SPC database is away shows its backlog; a broken control rule stays
    // on its tile, in red, for an hour.
    void tilesShowSpcBacklogAndRuleViolations()
    {
        WaitingSampling *sampling = nullptr;
        MonitorFixture f(false, MeasurementSystem::Metric, [&] {
            auto made = std::make_unique<WaitingSampling>();
            sampling = made.get();
            return made;
        });
        f.clock.set(QDateTime(QDate(2026, 3, 2), QTime(10, 0)));
        f.configure();
        qlxLanguage language;
        OverviewPage page(f.clock, language);
        page.addWelder(*f.monitor);
        page.show();
        QVERIFY(QTest::qWaitForWindowExposed(&page));
        QLabel *spc = label(page.tile(f.monitor->identifier()), "lblSpc");
        QVERIFY(spc->isHidden());

        sampling->queued = 4;
        emit sampling->backlogChanged(4);
        QTRY_COMPARE(spc->text(), QStringLiteral("SPC backlog: 4"));
        QVERIFY(spc->isVisible());

        sampling->pending = {{QStringLiteral("Energy"), 2, false, f.clock.now(), 130.0}};
        f.monitor->Timer1_Timer();
        QTRY_VERIFY(spc->text().endsWith(
            QStringLiteral("1 rule violations in the last hour: Energy - Rule 2: nine points "
                           "in a row on one side of the centre line")));
        QCOMPARE(background(spc), BgrColor::toColor(BgrColor::kRed));

        sampling->queued = 0;
        f.clock.set(f.clock.now().addSecs(3601));
        emit sampling->backlogChanged(0);
        QTRY_VERIFY(spc->isHidden());
    }
};

QTEST_MAIN(TestOverview)
#include "tst_overview.moc"

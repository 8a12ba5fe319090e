// The monitor's face over a real engine: welds go in as frames through the link's data
// event, and the rows, the status block, the alarms list and the commands are checked
// as the engineer sees them.

#include "FixedLimitsSampling.h"
#include "MonitorFixture.h"
#include "SampleWelds.h"

#include "monitor/widgets/AlarmLinesView.h"
#include "monitor/widgets/CorvaneUsw.h"
#include "protocol/Function26Frame.h"
#include "stats/widgets/BgrColor.h"
#include "stats/widgets/HorizontalMeter.h"
#include "stats/widgets/dlgSummary.h"

#include <QAbstractItemModel>
#include <QComboBox>
#include <QDomDocument>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSplitter>
#include <QTest>
#include <QToolButton>

namespace {

constexpr int kRows = CorvaneUsw::kRowCount;
constexpr qint32 kEnergy = 2;
const QString kNone = QStringLiteral("----");

QByteArray welds(int first, int last)
{
    QByteArray bytes;
    for (int cycle = first; cycle <= last; ++cycle)
        bytes +=
            Function26Frame::encode(SampleWelds::record(cycle), MeasurementSystem::Metric) + '\x55';
    return bytes;
}

// A face over a monitor on a fake TCP link, with limits from a stand-in for the SPC
// database.
struct Face
{
    explicit Face(std::function<void(qlxLanguage &)> translations = {})
        : fixture(false, MeasurementSystem::Metric, [this] {
            auto made = std::make_unique<FixedLimitsSampling>();
            sampling = made.get();
            return made;
        })
    {
        if (translations)
            translations(fixture.language);
        view = std::make_unique<CorvaneUsw>(monitor(), fixture.errors);
        view->Initialize(fixture.language, 0);
        monitor().setEquipment(QStringLiteral("Line 4"), QStringLiteral("IP:192.0.2.7:3001"));
        view->resize(900, 600);
    }

    EquipmentMonitor &monitor() { return *fixture.monitor; }
    template <typename T> T *control(const QString &name) const
    {
        return view->findChild<T *>(name);
    }
    template <typename T> T *rowControl(const char *name, int row) const
    {
        return control<T>(QLatin1String(name) + u'_' + QString::number(row));
    }
    HorizontalMeter *meter(int row) const { return rowControl<HorizontalMeter>("hmMeter", row); }
    QString lastValue(int row) const { return rowControl<QLineEdit>("txtLastValue", row)->text(); }
    QString label(const char *name) const { return control<QLabel>(QLatin1String(name))->text(); }

    void start()
    {
        monitor().StartStop();
        fixture.socket->accept();
    }
    void stop() { monitor().StartStop(); }
    // One arrival of bytes from the power supply, then the pass of the event loop that
    // redraws the face.
    void arrive(const QByteArray &bytes)
    {
        fixture.socket->deliver(bytes);
        QCoreApplication::processEvents();
    }
    const Dataset &dataset(qint32 number) const
    {
        return fixture.monitor->datasets().Item(DatasetCollection::keyFor(number));
    }

    // Set while the fixture makes its monitor, so declared before it.
    FixedLimitsSampling *sampling = nullptr;
    MonitorFixture fixture;
    std::unique_ptr<CorvaneUsw> view;
};

QColor barPixel(HorizontalMeter *meter)
{
    return meter->grab().toImage().pixelColor(meter->barRect().center());
}

} // namespace

using Limits = FixedLimitsSampling::Limits;
Q_DECLARE_METATYPE(Limits)

class TestCorvaneUsw : public QObject
{
    Q_OBJECT

private slots:
    // Before the first weld every row and figure reads dashes; after it each row shows
    // its characteristic, and an empty row stays off.
    void rowsShowTheirCharacteristicAndAnEmptyRowStaysOff()
    {
        Face face;
        for (int row = 0; row < kRows - 1; ++row)
            face.monitor().setRowSelection(row, row + 1);
        face.start();
        QCoreApplication::processEvents();
        QVERIFY(!face.meter(0)->meterEnabled());
        QCOMPARE(face.lastValue(0), kNone);
        for (const char *name : {"lblMode", "lblLastWeld", "lblAlarms", "lblWelds"})
            QCOMPARE(face.label(name), kNone);
        // The first weld alone: lowest and highest value are equal, and so are the ends of
        // the scale, which the meter accepts.
        face.arrive(welds(1, 1));
        QCOMPARE(face.meter(1)->LimitLower(), face.meter(1)->LimitUpper());
        face.arrive(welds(2, 4));
        QVERIFY(face.fixture.errors.isEmpty());

        for (int row = 0; row < kRows - 1; ++row) {
            const Dataset &dataset = face.dataset(row + 1);
            HorizontalMeter *meter = face.meter(row);
            QVERIFY(meter->meterEnabled());
            QCOMPARE((QList{meter->ValueMinimum(), meter->ValueAverage(), meter->ValueCurrent(),
                            meter->ValueMaximum(), meter->LimitLower(), meter->LimitUpper()}),
                     (QList{dataset.Minimum(), dataset.Average(), dataset.LastValue(),
                            dataset.Maximum(), dataset.Minimum(), dataset.Maximum()}));
            QCOMPARE(meter->Unit(), dataset.Unit);
            QCOMPARE(meter->NumberFormat(), QStringLiteral("0.0000"));
            QVERIFY(!meter->HideLimitLower() && !meter->HideLimitUpper());
        }
        // Weld 4: energy (1200 + 4) x 0.1 J.
        QCOMPARE(face.lastValue(kEnergy - 1), QLocale().toString(120.4, 'f', 4));
        QVERIFY(!face.meter(kRows - 1)->meterEnabled());
        QCOMPARE(face.lastValue(kRows - 1), kNone);
    }

    // The scale follows limits and values wherever they go; the meter refuses a lower
    // end above its upper end at any moment, so a wrong order shows as a report.
    void theScaleMovesWithoutCrossingItsEnds()
    {
        Face face;
        face.monitor().setRowSelection(0, kEnergy);
        const auto run = [&](std::optional<FixedLimitsSampling::Limits> limits) {
            face.sampling->limits.remove(kEnergy);
            if (limits)
                face.sampling->limits.insert(kEnergy, *limits);
            face.start();
            face.arrive(welds(1, 3));
            face.stop();
        };
        HorizontalMeter *meter = face.meter(0);
        run(std::nullopt); // from 0 .. 10 up to the values, 120 J and more
        QCOMPARE(meter->LimitLower(), face.dataset(kEnergy).Minimum());
        run(FixedLimitsSampling::specification(-50, -10));
        QCOMPARE(meter->LimitLower(), -50.0);
        QCOMPARE(meter->LimitUpper(), -10.0);
        run(FixedLimitsSampling::specification(1000, 2000));
        QCOMPARE(meter->LimitLower(), 1000.0);
        QCOMPARE(meter->LimitUpper(), 2000.0);
        // A lower limit alone, above every value: the row still shows, out of
        // specification, between the highest value and the limit.
        run(FixedLimitsSampling::Limits{Dataset::kLowerSpecLimit, 500, 0, 0, 0});
        QCOMPARE(meter->LimitLower(), face.dataset(kEnergy).Maximum());
        QCOMPARE(meter->LimitUpper(), 500.0);
        QCOMPARE(meter->ColorMeter(), BgrColor::toColor(BgrColor::kRed));
        QVERIFY(face.fixture.errors.isEmpty());
    }

    void barAndMarkerColours_data()
    {
        // Limits relative to the energy of the weld shown (v); markers of minimum,
        // average and maximum, which are all v after one weld.
        QTest::addColumn<Limits>("limits");
        QTest::addColumn<quint32>("bar"); // blue-green-red; 1 for the button face
        QTest::addColumn<quint32>("marker");
        const int both = Dataset::kLowerSpecLimit | Dataset::kUpperSpecLimit;
        const int warnings = both | Dataset::kLowerWarningLimit | Dataset::kUpperWarningLimit;
        const quint32 black = BgrColor::kBlack;
        QTest::newRow("no limits") << Limits{} << 1u << black;
        QTest::newRow("on the upper limit") << Limits{both, -10, 0} << BgrColor::kGreen << black;
        QTest::newRow("on the lower limit") << Limits{both, 0, 10} << BgrColor::kGreen << black;
        QTest::newRow("past a warning")
            << Limits{warnings, -10, 10, -5, -1} << BgrColor::kYellow << black;
        QTest::newRow("above the upper")
            << Limits{warnings, -10, -0.001, -20, -15} << BgrColor::kRed << BgrColor::kRed;
        QTest::newRow("below the lower")
            << Limits{both, 0.001, 10} << BgrColor::kRed << BgrColor::kRed;
    }

    void barAndMarkerColours()
    {
        QFETCH(Limits, limits);
        QFETCH(quint32, bar);
        QFETCH(quint32, marker);

        Face face;
        face.monitor().setRowSelection(0, kEnergy);
        // A first run learns the energy as the link decodes it, so that limits can sit
        // exactly on it.
        face.start();
        face.arrive(welds(7, 7));
        face.stop();
        const double v = face.dataset(kEnergy).LastValue();
        face.sampling->limits.insert(kEnergy,
                                     {limits.flags, v + limits.lowerSpec, v + limits.upperSpec,
                                      v + limits.lowerWarning, v + limits.upperWarning});
        face.start();
        face.arrive(welds(7, 7));

        HorizontalMeter *meter = face.meter(0);
        const QColor expected =
            bar == 1 ? face.view->palette().color(QPalette::Button) : BgrColor::toColor(bar);
        QCOMPARE(meter->ColorMeter(), expected);
        QCOMPARE(barPixel(meter), expected);
        for (const QColor &color :
             {meter->ColorMinimum(), meter->ColorAverage(), meter->ColorMaximum()})
            QCOMPARE(color, BgrColor::toColor(marker));
        QVERIFY(face.fixture.errors.isEmpty());
    }

    void statusBlockAndWeldsPerHour()
    {
        Face face;
        ManualClock &clock = face.fixture.clock;
        face.start();
        face.arrive(welds(1, 1));
        const CorvaneFUN26 first = SampleWelds::record(1);
        QCOMPARE(face.label("lblMode"), first.WeldModeDescription(face.fixture.language));
        QCOMPARE(face.label("lblLastWeld"), QStringLiteral("1  22:05:09"));
        QCOMPARE(face.label("lblRunTime"), QStringLiteral("00:00:00"));
        QCOMPARE(face.label("lblWelds"), QStringLiteral("1"));
        // Elapsed 0: the rate is not known and the label keeps what it showed.
        QCOMPARE(face.label("lblWeldsPerHour"), kNone);

        clock.advanceSeconds(7);
        face.arrive(welds(2, 3));
        // 3 welds in 7 s: 1542.86 an hour, cut to 1542.
        QCOMPARE(face.label("lblWeldsPerHour"), QStringLiteral("1542"));
        QCOMPARE(face.label("lblLastWeld"), QStringLiteral("3  22:05:16"));
        QCOMPARE(face.label("lblAlarms"), QString::number(face.monitor().totalAlarms()));
        QVERIFY(face.monitor().totalAlarms() > 0);

        clock.advanceSeconds(3600 - 7);
        face.arrive(welds(4, 5));
        QCOMPARE(face.label("lblRunTime"), QStringLiteral("01:00:00"));
        QCOMPARE(face.label("lblWeldsPerHour"), QStringLiteral("5"));

        // A new run: its first weld is at elapsed 0 again, and the rate of the last run
        // stays up until the next weld.
        face.stop();
        face.start();
        face.arrive(welds(6, 6));
        QCOMPARE(face.label("lblWelds"), QStringLiteral("1"));
        QCOMPARE(face.label("lblRunTime"), QStringLiteral("00:00:00"));
        QCOMPARE(face.label("lblWeldsPerHour"), QStringLiteral("5"));
    }

    void alarmsListNewestOnTop()
    {
        Face face;
        auto *list = face.control<AlarmLinesView>(QStringLiteral("lstAlarms"));
        QAbstractItemModel *model = list->model();
        QSignalSpy inserted(model, &QAbstractItemModel::rowsInserted);
        face.start();
        face.arrive(welds(1, 6));
        QCOMPARE(inserted.size(), 1);
        const int firstLines = model->rowCount();
        QVERIFY(firstLines > 0);
        list->setCurrentRow(firstLines - 1);
        const QString picked = model->index(list->currentRow(), 0).data().toString();

        face.arrive(welds(7, 15));
        QCOMPARE(inserted.size(), 2);
        QCOMPARE(inserted.last().at(1).toInt(), 0); // the new lines go in on top
        QStringList shown;
        for (int row = 0; row < model->rowCount(); ++row)
            shown << model->index(row, 0).data().toString();
        QStringList expected = face.monitor().alarmsText().split(QStringLiteral("\r\n"));
        expected.removeLast();
        QCOMPARE(shown, expected);
        QVERIFY(shown.first().startsWith(QStringLiteral("15: ")));
        QCOMPARE(model->rowCount(), face.monitor().totalAlarms());
        // The line the engineer picked stays picked while new lines come in above it.
        QCOMPARE(model->index(list->currentRow(), 0).data().toString(), picked);

        // At the top the newest lines show; further down the lines in sight stay put.
        list->resize(300, 3 * list->lineHeight() + 2 * list->frameWidth());
        list->setCurrentRow(0);
        QCOMPARE(list->firstVisibleRow(), 0);
        face.arrive(welds(16, 20));
        QCOMPARE(list->firstVisibleRow(), 0);
        list->setCurrentRow(model->rowCount() - 1);
        const int reading = list->firstVisibleRow();
        QVERIFY(reading > 0);
        const QString inSight = model->index(reading, 0).data().toString();
        face.arrive(welds(21, 21));
        QCOMPARE(model->index(list->firstVisibleRow(), 0).data().toString(), inSight);

        face.stop();
        face.start();
        QCoreApplication::processEvents();
        QCOMPARE(model->rowCount(), 0);
    }

    void partSummaryAndConnectionState()
    {
        Face face;
        face.view->show();
        face.sampling->part = QStringLiteral("Housing 7");
        face.view->RefreshDisplay();
        auto *part = face.control<QLineEdit>(QStringLiteral("txtPart"));
        QCOMPARE(part->text(), QStringLiteral("Housing 7"));
        face.sampling->offeredPart = QStringLiteral("Housing 9");
        QTest::mouseClick(face.control<QPushButton>(QStringLiteral("bnPartSelect")),
                          Qt::LeftButton);
        QCOMPARE(face.sampling->chooserOwners, QList<QObject *>({face.view.get()}));
        QCOMPARE(part->text(), QStringLiteral("Housing 9"));

        // The summary of a row's characteristic; a row without one has nothing to show.
        face.monitor().setRowSelection(2, kEnergy);
        face.start();
        face.arrive(welds(1, 5));
        QVERIFY(!face.rowControl<QToolButton>("bnSetup", 4)->isEnabled());
        QTest::mouseClick(face.rowControl<QToolButton>("bnSetup", 2), Qt::LeftButton);
        auto *summary = face.view->findChild<dlgSummary *>();
        QVERIFY(summary && summary->isVisible());
        QCOMPARE(summary->windowTitle(), QStringLiteral("Energy"));
        QCOMPARE(summary->figures().Values.size(), 5);
        summary->close();

        // The link's state: connecting is a problem, connected is not.
        auto *icon = face.control<QLabel>(QStringLiteral("picConnectionProblem"));
        face.stop();
        face.monitor().StartStop();
        face.monitor().Timer1_Timer();
        QCOMPARE(face.label("lblConnection"), QStringLiteral("Connecting..."));
        QVERIFY(!icon->isHidden());
        face.fixture.socket->accept();
        face.monitor().Timer1_Timer();
        QCOMPARE(face.label("lblConnection"), QStringLiteral("Connected"));
        QVERIFY(icon->isHidden());
        QVERIFY(face.fixture.errors.isEmpty());
    }

    // At the smallest size the face allows, every row is whole and each meter has room
    // for its two limit labels and its unit; the face fits a 1024 x 768 screen.
    void legibleAtItsSmallestSize()
    {
        Face face;
        face.view->resize(face.view->minimumSizeHint());
        QVERIFY(face.view->width() <= 1000 && face.view->height() <= 640);
        face.view->show();
        QVERIFY(QTest::qWaitForWindowExposed(face.view.get()));
        const QFontMetrics metrics = face.meter(0)->fontMetrics();
        const int labels = metrics.horizontalAdvance(QStringLiteral("-0000.0000 mm/s -0000.0000"));
        const QWidget *rows = face.control<QWidget>(QStringLiteral("rows"));
        for (int row = 0; row < kRows; ++row) {
            HorizontalMeter *meter = face.meter(row);
            QVERIFY2(meter->width() > labels, qPrintable(QString::number(meter->width())));
            const QRect area(meter->mapTo(rows, QPoint(0, 0)), meter->size());
            QVERIFY(rows->rect().contains(area) &&
                    meter->height() >= meter->minimumSizeHint().height());
        }
    }

    // Subgroups waiting for an unreachable SPC database show in the status block with
    // their count, and the line goes away once they are forwarded.
    void spcBacklogShowsWhileSubgroupsWait()
    {
        Face face;
        face.view->show();
        auto *backlog = face.control<QLabel>(QStringLiteral("lblSpcBacklog"));
        QVERIFY(backlog->isHidden());
        face.sampling->queuedSubgroups = 3;
        emit face.sampling->backlogChanged(3);
        QTRY_VERIFY(backlog->isVisible());
        QCOMPARE(backlog->text(), QStringLiteral("3"));
        face.sampling->queuedSubgroups = 0;
        emit face.sampling->backlogChanged(0);
        QTRY_VERIFY(backlog->isHidden());
    }

    void startStopFollowsTheMonitorAndLocksTheRows()
    {
        Face face([](qlxLanguage &language) {
            language.setText(3786, QStringLiteral("&Begin"));
            language.setText(929, QStringLiteral("&Halt"));
        });
        auto *button = face.control<QPushButton>(QStringLiteral("bnStartStop"));
        auto *part = face.control<QPushButton>(QStringLiteral("bnPartSelect"));
        const auto selectorsEnabled = [&](bool enabled) {
            return face.rowControl<QComboBox>("cboCharacteristic", kRows - 1)->isEnabled() ==
                       enabled &&
                   part->isEnabled() == enabled;
        };
        QCOMPARE(button->text(), QStringLiteral("&Begin"));
        QVERIFY(selectorsEnabled(true));

        face.view->show();
        QVERIFY(QTest::qWaitForWindowActive(face.view.get()));
        // The mnemonic presses the button (which shows the press for a moment first).
        QTest::keyClick(face.view->windowHandle(), Qt::Key_B, Qt::AltModifier);
        QTRY_VERIFY(face.fixture.socket && face.fixture.socket->connects.size() == 1);
        QCOMPARE(button->text(), QStringLiteral("&Halt"));
        QVERIFY(selectorsEnabled(false));

        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(button->text(), QStringLiteral("&Begin"));
        QVERIFY(selectorsEnabled(true));
    }

    void selectorsAndMonitorAgree()
    {
        Face face;
        face.start();
        face.arrive(welds(1, 2));
        auto *selector = face.rowControl<QComboBox>("cboCharacteristic", 3);
        selector->setCurrentIndex(selector->findData(kEnergy));
        QCOMPARE(face.monitor().rowSelection(3), kEnergy);
        QVERIFY(face.view->refreshPending());
        QCoreApplication::processEvents();
        QCOMPARE(face.meter(3)->ValueCurrent(), face.dataset(kEnergy).LastValue());

        // The monitor's configuration chooses rows too, and its shutdown clears them.
        face.stop();
        QVERIFY(face.monitor().Load(
            QStringLiteral("<Configuration><List Index=\"5\" ItemData=\"8\"/></Configuration>")));
        QCoreApplication::processEvents();
        QCOMPARE(face.rowControl<QComboBox>("cboCharacteristic", 5)->currentData().toInt(), 8);
        QVERIFY(face.monitor().ShutDown());
        QCoreApplication::processEvents();
        QCOMPARE(face.rowControl<QComboBox>("cboCharacteristic", 5)->currentText(),
                 QStringLiteral("(none)"));
        QVERIFY(!face.meter(5)->meterEnabled());

        // A new welder's configuration shows every characteristic in its usual order.
        QVERIFY(face.monitor().Load(QString()));
        QCoreApplication::processEvents();
        for (int row = 0; row < kRows; ++row)
            QCOMPARE(face.rowControl<QComboBox>("cboCharacteristic", row)->currentData(), row + 1);
    }

    // The engineer drags the alarms list taller; the height stays with the configuration
    // and comes back with it.
    void alarmsListHeightIsKept()
    {
        Face face;
        face.view->show();
        QVERIFY(QTest::qWaitForWindowExposed(face.view.get()));
        auto *splitter = face.control<QSplitter>(QStringLiteral("splAlarms"));
        const int before = splitter->sizes().constLast();
        QSplitterHandle *handle = splitter->handle(1);
        const QPoint grip = handle->rect().center();
        QTest::mousePress(handle, Qt::LeftButton, {}, grip);
        QTest::mouseMove(handle, grip - QPoint(0, 80));
        QTest::mouseRelease(handle, Qt::LeftButton, {}, grip - QPoint(0, 80));
        const int after = splitter->sizes().constLast();
        QVERIFY(after > before);
        QCOMPARE(face.monitor().configuration().alarmListHeight, after);

        QDomDocument saved;
        saved.appendChild(saved.importNode(face.monitor().GetXMLNode(), true));
        Face again;
        QVERIFY(again.monitor().Load(saved.toString()));
        again.view->show();
        QVERIFY(QTest::qWaitForWindowExposed(again.view.get()));
        QTRY_COMPARE(again.control<QSplitter>(QStringLiteral("splAlarms"))->sizes().constLast(),
                     after);
    }
};

QTEST_MAIN(TestCorvaneUsw)
#include "tst_corvaneusw.moc"

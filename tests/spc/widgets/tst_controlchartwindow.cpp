#include "ManualClock.h"
#include "RecordingErrorReport.h"
#include "RecordingMessageBoxes.h"
#include "ScratchDatabase.h"

#include "platform/qlxLanguage.h"
#include "spc/widgets/ControlChartWindows.h"
#include "spc/widgets/dlgControlChart.h"

#include <QFile>
#include <QLabel>
#include <QProcess>
#include <QSvgRenderer>
#include <QTemporaryDir>
#include <QTest>
#include <QTextStream>

#include <cmath>

using namespace qlaDatabase6;

namespace {

// Four subgroups of five in control (means 11, 11, 12, 10; ranges 4, 2, 4, 2), then one
// whose mean 13.6 stands above the limits of the first four.
const QList<QList<double>> kValues = {{10, 12, 11, 13, 9},
                                      {11, 11, 12, 10, 11},
                                      {12, 14, 13, 11, 10},
                                      {9, 10, 11, 10, 10},
                                      {14, 13, 14, 13, 14}};
const QDateTime kFirst(QDate(2026, 11, 2), QTime(6, 0));
constexpr double kD2 = 2.326;
const QStringList kCharacteristic = {"--part",    "Housing", "--process",
                                     "Seal weld", "--test",  "Energy"};

int runTool(const QStringList &arguments, const QString &dsn)
{
    QProcess process;
    process.start(QStringLiteral(CORVANE_SPC_TOOL), arguments + QStringList{"--dsn", dsn});
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return -1;
    if (process.exitCode() != 0)
        qWarning("%s", process.readAllStandardError().constData());
    return process.exitCode();
}

// The history as `subgroups --csv` writes it, stored with `corvane-spc import`.
bool importHistory(const QString &dsn, const QString &folder)
{
    const QString file = folder + QStringLiteral("/history.csv");
    QFile csv(file);
    if (!csv.open(QIODevice::WriteOnly))
        return false;
    QTextStream out(&csv);
    out << "subgroup,date_time,part_group,part,process_group,process,source_tag,"
           "value_count,test_item,kind,sample_number,value,text\r\n";
    for (int s = 0; s < kValues.size(); ++s) {
        const QString head = QStringLiteral("%1,%2,Line 3,Housing,Corvane,Seal weld,Corvane,5,")
                                 .arg(s + 1)
                                 .arg(kFirst.addSecs(300 * s).toString(Qt::ISODate));
        for (int i = 0; i < 5; ++i)
            out << head << "Energy,1," << i + 1 << ',' << kValues[s][i] << ",\r\n";
    }
    out.flush();
    csv.close();
    return runTool({"import", file}, dsn) == 0 &&
           runTool({"set-limits", "Housing", "Energy", "--lsl", "7", "--usl", "16"}, dsn) == 0;
}

QString label(const QWidget &window, const char *name)
{
    const auto *l = window.findChild<QLabel *>(QLatin1String(name));
    return l ? l->text() : QStringLiteral("(no %1)").arg(QLatin1String(name));
}

} // namespace

// The control-chart window on a SQLite file loaded by the SPC tool: the figures it shows
// against hand-computed ones, freezing limits from what is in view, following a new
// subgroup, and the pictures of the window and the tool.
class TestControlChartWindow : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    std::unique_ptr<ScratchDatabase> m_scratch;
    qlxLanguage m_language;
    RecordingErrorReport m_errors;
    RecordingMessageBoxes m_messages;
    ManualClock m_clock;
    std::unique_ptr<ControlChartWindows> m_windows;

    dlgControlChart *open()
    {
        dlgControlChart *window = m_windows->open(m_language, m_scratch->dsn(),
                                                  {"Housing", "Seal weld", "Energy"}, nullptr);
        if (window)
            window->resize(1400, 800);
        return window;
    }

private slots:
    void init()
    {
        m_scratch = std::make_unique<ScratchDatabase>(QStringLiteral("sqlite"));
        QVERIFY2(m_scratch->state() == ScratchDatabase::State::Ready,
                 qPrintable(m_scratch->message()));
        QVERIFY(importHistory(m_scratch->dsn(), m_folder.path()));
        m_windows = std::make_unique<ControlChartWindows>(m_errors, m_messages, m_clock);
    }

    void cleanup()
    {
        m_windows.reset();
        qDeleteAll(QApplication::topLevelWidgets());
        m_scratch.reset();
    }

    // Limits frozen from the first four subgroups: X̄ 11 ± A2 R̄ (A2 0.577, R̄ 3), zones
    // at thirds of that, the fifth subgroup marked for rule 1 where it is drawn.
    void showsTheFrozenChartAndItsFigures()
    {
        QCOMPARE(runTool(QStringList{"freeze-limits", "--baseline", "4"} + kCharacteristic,
                         m_scratch->dsn()),
                 0);
        dlgControlChart *window = open();
        QVERIFY(window);
        QVERIFY(QTest::qWaitForWindowExposed(window));
        const spc::ChartSnapshot &snapshot = window->snapshot();
        QVERIFY(snapshot.frozenLimits);
        QCOMPARE(snapshot.subgroups, 5);

        const spc::ChartLines &lines = window->plot()->lines();
        QCOMPARE(lines.xCentre.values.front(), 11.0);
        const double width = 0.577 * 3;
        QVERIFY(std::abs(lines.xUpper.values.front() - (11 + width)) < 1e-3);
        QVERIFY(std::abs(lines.xLower.values.front() - (11 - width)) < 1e-3);
        QVERIFY(std::abs(lines.zones[2].values.front() - (11 + width * 2 / 3)) < 1e-3);
        QVERIFY(std::abs(lines.spreadUpper.values.front() - 2.114 * 3) < 5e-3);
        QCOMPARE(lines.x.values, std::vector<double>({11, 11, 12, 10, 13.6}));

        QCOMPARE(lines.xMarked.size(), std::size_t(1));
        const spc::MarkedPoint mark = lines.xMarked.front();
        QCOMPARE(spc::ChartLines::timeOf(mark.key), kFirst.addSecs(1200));
        QCOMPARE(window->plot()->upperMarks()->dataCount(), 1);
        const QPointF at = window->plot()->upperMarks()->coordsToPixels(mark.key, mark.value);
        QCOMPARE(window->plot()->markTextAt(at.toPoint()), QStringLiteral("Rule 1"));
        QCOMPARE(window->plot()->markTextAt(at.toPoint() + QPoint(0, 40)), QString());
        const QImage image = window->plot()->grab().toImage();
        QCOMPARE(image.pixelColor(at.toPoint()), QColor(0xc6, 0x28, 0x28));

        // Capability of all 25 values against 7 and 16: σ within R̄/d2 over the five
        // ranges, σ overall the sample standard deviation.
        double sum = 0;
        double squares = 0;
        for (const QList<double> &subgroup : kValues)
            for (double v : subgroup) {
                sum += v;
                squares += v * v;
            }
        const double mean = sum / 25;
        const double overall = std::sqrt((squares - 25 * mean * mean) / 24);
        const double within = (4 + 2 + 4 + 2 + 1) / 5.0 / kD2;
        const spc::CapabilityFigures &f = snapshot.capability;
        QVERIFY(std::abs(f.cp->value - 9 / (6 * within)) < 1e-9);
        QVERIFY(std::abs(f.ppk->value - std::min(16 - mean, mean - 7) / (3 * overall)) < 1e-9);
        const QLocale locale = window->locale();
        QVERIFY2(label(*window, "lblCp").startsWith(locale.toString(9 / (6 * within), 'g', 4)),
                 qPrintable(label(*window, "lblCp")));
        QCOMPARE(label(*window, "lblSigmaOverall"), locale.toString(overall, 'g', 4));
        QCOMPARE(label(*window, "lblPpm"), QStringLiteral("0"));
    }

    // Without frozen limits the chart estimates its own; freezing the stretch in view (the
    // last four subgroups) stores their limits, and a subgroup stored afterwards shows.
    void freezesTheVisibleRangeAndFollowsNewSubgroups()
    {
        dlgControlChart *window = open();
        QVERIFY(window);
        QVERIFY(!window->snapshot().frozenLimits);
        QCOMPARE(window->snapshot().chart.limits.centre, (55 + 55 + 60 + 50 + 68) / 25.0);

        QCPAxis *time = window->plot()->axisRects().front()->axis(QCPAxis::atBottom);
        time->setRange(spc::ChartLines::keyOf(kFirst.addSecs(200)),
                       spc::ChartLines::keyOf(kFirst.addSecs(1300)));
        m_messages.answers = {false, true};
        window->bnFreeze_Click();
        QVERIFY(!window->snapshot().frozenLimits);
        window->bnFreeze_Click();
        QCOMPARE(m_messages.questions.size(), 2);
        QVERIFY(m_messages.isEmpty());
        QVERIFY(window->snapshot().frozenLimits);
        const spc::ControlLimits limits = window->snapshot().chart.limits;
        QCOMPARE(limits.centre, (55 + 60 + 50 + 68) / 20.0);
        QVERIFY(std::abs(limits.sigma - (2 + 4 + 2 + 1) / 4.0 / kD2) < 1e-3);
        SqlDatabase database;
        QVERIFY(connectTo(database, m_scratch->dsn()));
        QCOMPARE(database.controlLimits("Housing", "Seal weld", "Energy").baselineSubgroups, 4);

        Subgroup next;
        next.setHeader({true, 5, kFirst.addSecs(1500), QStringLiteral("Line 3"),
                        QStringLiteral("Housing"), QStringLiteral("Corvane"),
                        QStringLiteral("Seal weld"), QStringLiteral("Corvane")});
        next.AddTestItem(QStringLiteral("Energy"), TestItem::kMeasuredValue);
        for (int i = 1; i <= 5; ++i)
            next.addValue(i, 11);
        QVERIFY(next.store(database) > 0);
        m_windows->subgroupStored(QStringLiteral("Cover"), QStringLiteral("Seal weld"));
        QCOMPARE(window->snapshot().subgroups, 5);
        const QCPRange inView = time->range();
        m_windows->subgroupStored(QStringLiteral("Housing"), QStringLiteral("Seal weld"));
        QCOMPARE(window->snapshot().subgroups, 6);
        QCOMPARE(time->range(), inView);
        window->setRange({}, {});
        QVERIFY(time->range().upper > spc::ChartLines::keyOf(kFirst.addSecs(1500)));
        QVERIFY(m_errors.reports.isEmpty());
    }

    // The window's export and `corvane-spc chart --png/--svg` write pictures of the chart.
    void writesPictures()
    {
        dlgControlChart *window = open();
        QVERIFY(window);
        const QString png = m_folder.filePath(QStringLiteral("window.png"));
        const QString svg = m_folder.filePath(QStringLiteral("window"));
        window->setFileChooser([&](const QString &suffix) { return suffix == "png" ? png : svg; });
        window->bnExportPng_Click();
        window->bnExportSvg_Click();
        const QString toolPng = m_folder.filePath(QStringLiteral("tool.png"));
        const QString toolSvg = m_folder.filePath(QStringLiteral("tool.svg"));
        QCOMPARE(
            runTool(QStringList{"chart", "--png", toolPng} + kCharacteristic, m_scratch->dsn()), 0);
        QCOMPARE(
            runTool(QStringList{"chart", "--svg", toolSvg} + kCharacteristic, m_scratch->dsn()), 0);
        for (const QString &file : {png, toolPng}) {
            QImage image(file, "PNG");
            QCOMPARE(image.size(), QSize(1400, 800));
            // Not a blank page: the value line's blue is there.
            bool blue = false;
            for (int y = 0; y < image.height() && !blue; y += 2)
                for (int x = 0; x < image.width() && !blue; ++x)
                    blue = image.pixelColor(x, y) == QColor(0x1f, 0x4e, 0x9a);
            QVERIFY2(blue, qPrintable(file));
        }
        for (const QString &file : {svg + QStringLiteral(".svg"), toolSvg}) {
            QSvgRenderer renderer(file);
            QVERIFY2(renderer.isValid(), qPrintable(file));
            QCOMPARE(renderer.viewBox(), QRect(0, 0, 1400, 800));
        }
        QCOMPARE(runTool(QStringList{"chart", "--png", toolPng, "--csv"} + kCharacteristic,
                         m_scratch->dsn()),
                 2);
        QCOMPARE(
            runTool(QStringList{"chart", "--png", m_folder.filePath("x.gif")} + kCharacteristic,
                    m_scratch->dsn()),
            1);
    }
};

QTEST_MAIN(TestControlChartWindow)
#include "tst_controlchartwindow.moc"

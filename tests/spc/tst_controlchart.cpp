#include "spc/ChartLines.h"
#include "spc/ControlChart.h"

#include <QTest>

using namespace spc;

namespace {

std::vector<SubgroupValues> subgroupsOf(const QList<QList<double>> &lists)
{
    std::vector<SubgroupValues> subgroups;
    const QDateTime start(QDate(2026, 11, 2), QTime(6, 0));
    for (const QList<double> &values : lists)
        subgroups.push_back({qint64(subgroups.size() + 1),
                             start.addSecs(300 * qint64(subgroups.size())),
                             std::vector<double>(values.begin(), values.end())});
    return subgroups;
}

// Four subgroups of five: X̄̄ = 11, R̄ = 3, s̄ = (2 × 1.58114 + 2 × 0.70711) / 4.
const QList<QList<double>> kFourOfFive = {
    {10, 12, 11, 13, 9}, {11, 11, 12, 10, 11}, {12, 14, 13, 11, 10}, {9, 10, 11, 10, 10}};

bool near(double actual, double expected, double tolerance = 2e-3)
{
    if (std::abs(actual - expected) <= tolerance)
        return true;
    qWarning("%.6f differs from %.6f", actual, expected);
    return false;
}

} // namespace

// Charts against limits worked out with the printed factors of the quality textbooks
// (A2, D3, D4, A3, B3, B4, E2 = 3/d2(2)), which for a constant n the per-point limits
// must reproduce.
class TestControlChart : public QObject
{
    Q_OBJECT

private slots:
    void constantSubgroupsGiveTextbookLimits_data()
    {
        QTest::addColumn<QList<QList<double>>>("data");
        QTest::addColumn<ChartType>("type");
        QTest::addColumn<double>("centre");
        QTest::addColumn<double>("xUpper");
        QTest::addColumn<double>("xLower");
        QTest::addColumn<double>("spreadCentre");
        QTest::addColumn<double>("spreadUpper");
        const double sBar = (2 * std::sqrt(2.5) + 2 * std::sqrt(0.5)) / 4;
        // n = 5: A2 0.577, D4 2.114, D3 0; A3 1.427, B4 2.089, B3 0.
        QTest::newRow("xbar-r") << kFourOfFive << ChartType::XbarR << 11.0 << 11 + 0.577 * 3
                                << 11 - 0.577 * 3 << 3.0 << 2.114 * 3;
        QTest::newRow("xbar-s") << kFourOfFive << ChartType::XbarS << 11.0 << 11 + 1.427 * sBar
                                << 11 - 1.427 * sBar << sBar << 2.089 * sBar;
        // Individuals 10 12 11 15 12: moving ranges 2 1 4 3, MR̄ 2.5; E2 2.66, D4 3.267.
        QTest::newRow("i-mr") << QList<QList<double>>{{10}, {12}, {11}, {15}, {12}}
                              << ChartType::IndividualsMR << 12.0 << 12 + 2.66 * 2.5
                              << 12 - 2.66 * 2.5 << 2.5 << 3.267 * 2.5;
    }
    void constantSubgroupsGiveTextbookLimits()
    {
        QFETCH(QList<QList<double>>, data);
        QFETCH(ChartType, type);
        QFETCH(double, centre);
        QFETCH(double, xUpper);
        QFETCH(double, xLower);
        QFETCH(double, spreadCentre);
        QFETCH(double, spreadUpper);
        const std::vector<SubgroupValues> subgroups = subgroupsOf(data);
        // The chart follows the subgroups' size unless asked for another.
        const Chart chart = ControlChart::build(
            subgroups, {type == ChartType::XbarS ? std::optional(type) : std::nullopt, {}, {}});
        QCOMPARE(chart.status, ChartStatus::Ready);
        QCOMPARE(chart.type, type);
        QCOMPARE(chart.points.size(), subgroups.size());
        const ChartPoint &last = chart.points.back();
        QVERIFY(near(last.xCentre, centre));
        QVERIFY(near(last.xUpper, xUpper));
        QVERIFY(near(last.xLower, xLower));
        QVERIFY(near(last.spreadCentre, spreadCentre));
        QVERIFY(near(last.spreadUpper, spreadUpper, 5e-3));
        QCOMPARE(last.spreadLower, 0.0);
        QVERIFY(chart.points.front().spread.has_value() != (type == ChartType::IndividualsMR));
    }

    void varyingSubgroupsHaveTheirOwnLimits()
    {
        // σ = mean(4 / 2.326, 2 / 1.693) = 1.45051; grand mean of the eight values 11.
        const Chart chart = ControlChart::build(
            subgroupsOf({{10, 12, 11, 13, 9}, {11, 12, 10}, {14}}), ChartRequest{});
        QCOMPARE(chart.status, ChartStatus::Ready);
        QVERIFY(near(chart.limits.sigma, 1.45051, 1e-5));
        QVERIFY(near(chart.limits.centre, (55 + 33 + 14) / 9.0, 1e-9));
        const ChartPoint &three = chart.points[1];
        QVERIFY(near(three.xUpper - three.xCentre, 3 * 1.45051 / std::sqrt(3.0), 1e-4));
        QVERIFY(near(three.spreadCentre, 1.693 * 1.45051, 1e-4));
        QVERIFY(near(three.spreadUpper, (1.693 + 3 * 0.888) * 1.45051, 1e-4));
        QVERIFY(near(chart.points[0].spreadUpper, (2.326 + 3 * 0.864) * 1.45051, 1e-4));
        // A subgroup of one value is a point on the mean chart at 3σ, on no range chart.
        QVERIFY(!chart.points[2].spread);
        QVERIFY(near(chart.points[2].xUpper - chart.points[2].xCentre, 3 * 1.45051, 1e-4));
    }

    void baselineOfFirstSubgroups()
    {
        // A fifth subgroup with a range of 8, beyond D4 R̄ = 6.342, does not move the
        // limits of the first four.
        QList<QList<double>> data = kFourOfFive;
        data.append({5, 12, 11, 13, 9});
        ChartRequest request;
        request.baseline.kind = ChartBaseline::Kind::FirstSubgroups;
        request.baseline.count = 4;
        const Chart chart = ControlChart::build(subgroupsOf(data), request);
        QCOMPARE(chart.baselineSubgroups, 4);
        QVERIFY(near(chart.points.back().xCentre, 11, 1e-9));
        QVERIFY(chart.points.back().spreadBeyondLimits);
        QVERIFY(!chart.points[2].spreadBeyondLimits);
        request.baseline = {ChartBaseline::Kind::DateRange,
                            0,
                            subgroupsOf(data)[3].dateTime,
                            subgroupsOf(data)[4].dateTime,
                            {}};
        QCOMPARE(ControlChart::build(subgroupsOf(data), request).baselineSubgroups, 2);
    }

    void notEnoughData_data()
    {
        QTest::addColumn<QList<QList<double>>>("data");
        QTest::addColumn<ChartStatus>("status");
        QTest::newRow("one subgroup")
            << QList<QList<double>>{{1, 2, 3}} << ChartStatus::NotEnoughData;
        QTest::newRow("no spread")
            << QList<QList<double>>{{4, 4}, {5, 5}} << ChartStatus::NotEnoughData;
        QTest::newRow("one individual") << QList<QList<double>>{{4}} << ChartStatus::NotEnoughData;
        QList<double> large(26, 1.0);
        large[0] = 2;
        QTest::newRow("ranges of 26")
            << QList<QList<double>>{large, large} << ChartStatus::SubgroupTooLarge;
    }
    void notEnoughData()
    {
        QFETCH(QList<QList<double>>, data);
        QFETCH(ChartStatus, status);
        ChartRequest request;
        if (status == ChartStatus::SubgroupTooLarge)
            request.type = ChartType::XbarR;
        const Chart chart = ControlChart::build(subgroupsOf(data), request);
        QCOMPARE(chart.status, status);
        QVERIFY(chart.points.empty());
    }

    // Each rule alone, on an individuals chart frozen at centre 0 and σ 1 (values are
    // zones), or on means of n equal values (zones of σ/√n).
    void eachRuleFiresAndItsNearMissDoesNot_data()
    {
        QTest::addColumn<int>("rule");
        QTest::addColumn<int>("n");
        QTest::addColumn<QList<double>>("values");
        QTest::addColumn<bool>("fires");
        const auto row = [](const char *name, int rule, QList<double> values, bool fires,
                            int n = 1) { QTest::newRow(name) << rule << n << values << fires; };
        const auto repeat = [](QList<double> pattern, int count) {
            QList<double> values;
            while (values.size() < count)
                values.append(pattern.at(values.size() % pattern.size()));
            return values;
        };
        row("1 beyond 3 sigma", 1, {0, -3.2}, true);
        row("1 inside", 1, {0, 2.9}, false);
        row("1 beyond 3 sigma of a mean of 4", 1, {0, 1.6}, true, 4);
        row("1 same mean of 1", 1, {0, 1.6}, false, 1);
        row("2 nine on one side", 2, repeat({0.4}, 9), true);
        row("2 eight and a crossing", 2, repeat({0.4}, 8) << -0.1 << 0.4, false);
        row("3 six rising", 3, {-1, -0.5, 0, 0.2, 0.3, 0.9}, true);
        row("3 six falling", 3, {1, 0.5, 0, -0.2, -0.3, -0.9}, true);
        row("3 a tie breaks it", 3, {-1, -0.5, 0, 0.2, 0.2, 0.9}, false);
        row("4 fourteen alternating", 4, repeat({0.5, -0.5}, 14), true);
        row("4 thirteen alternating", 4, repeat({0.5, -0.5}, 13) << 0.7, false);
        row("5 two of three beyond 2", 5, {2.5, 0.5, 2.1}, true);
        row("5 opposite sides", 5, {2.5, 0.5, -2.5}, false);
        row("5 two of four", 5, {2.5, 0.5, 0.5, 2.5}, false);
        row("6 four of five beyond 1", 6, {-1.5, -1.5, 0, -1.5, -1.2}, true);
        row("6 three of five", 6, {1.5, 1.5, 0, 0, 1.5, 1.5}, false);
        row("7 fifteen within 1", 7, repeat({0.5, -0.5, 0.2}, 15), true);
        row("7 fourteen within 1", 7, repeat({0.5}, 14) << 1.5, false);
        row("8 eight beyond 1 either side", 8, repeat({1.5, -1.5, -1.2}, 8), true);
        row("8 seven beyond 1", 8, repeat({1.5, -1.5}, 7) << 0.5, false);
    }
    void eachRuleFiresAndItsNearMissDoesNot()
    {
        QFETCH(int, rule);
        QFETCH(int, n);
        QFETCH(QList<double>, values);
        QFETCH(bool, fires);
        QList<QList<double>> data;
        for (double v : values)
            data.append(QList<double>(n, v));
        ChartRequest request;
        request.baseline.kind = ChartBaseline::Kind::Frozen;
        request.baseline.frozen = {n == 1 ? ChartType::IndividualsMR : ChartType::XbarR, 0, 1};
        request.rules = RuleSet::all();
        const Chart chart = ControlChart::build(subgroupsOf(data), request);
        QCOMPARE(chart.points.size(), std::size_t(values.size()));
        // The point that completes the pattern carries it, and no point before it.
        QCOMPARE(chart.points.back().xRules.contains(rule), fires);
        for (std::size_t i = 0; i + 1 < chart.points.size(); ++i)
            QVERIFY2(!chart.points[i].xRules.contains(rule), qPrintable(QString::number(i)));
        // Switched off, the rule marks nothing.
        RuleSet others;
        for (int r : RuleSet::all().rules())
            if (r != rule)
                others.insert(r);
        request.rules = others;
        QVERIFY(
            !ControlChart::build(subgroupsOf(data), request).points.back().xRules.contains(rule));
    }

    // The drawn limit lines keep a point only where the limit changes, with the point
    // before it, so that a step centred between two points stands where the size changed;
    // a subgroup of one value leaves a gap in the lower chart's lines only.
    void limitLinesStepWhereTheSizeChanges()
    {
        const Chart chart = ControlChart::build(
            subgroupsOf({{10, 12, 11, 13, 9},
                         {11, 11, 12, 10, 11},
                         {12, 14, 13, 11, 10},
                         {11, 12, 10},
                         {14},
                         {9, 10, 11, 10, 10},
                         {11, 12, 11, 10, 10}}),
            ChartRequest{});
        const ChartLines lines = ChartLines::of(chart);
        const auto keysOf = [&](std::initializer_list<int> points) {
            std::vector<double> keys;
            for (int i : points)
                keys.push_back(ChartLines::keyOf(chart.points[std::size_t(i)].dateTime));
            return keys;
        };
        QCOMPARE(lines.x.keys, keysOf({0, 1, 2, 3, 4, 5, 6}));
        QCOMPARE(lines.xUpper.keys, keysOf({0, 2, 3, 4, 5, 6}));
        QCOMPARE(lines.xUpper.values[1], chart.points[2].xUpper);
        QCOMPARE(lines.xUpper.values[2], chart.points[3].xUpper);
        QCOMPARE(lines.xCentre.keys, keysOf({0, 6}));
        QCOMPARE(lines.spread.keys, keysOf({0, 1, 2, 3, 5, 6}));
        QCOMPARE(lines.spreadUpper.keys, keysOf({0, 2, 3, 5, 6}));
        QCOMPARE(ChartLines::timeOf(lines.x.keys[3]), chart.points[3].dateTime);
    }
};

QTEST_GUILESS_MAIN(TestControlChart)
#include "tst_controlchart.moc"

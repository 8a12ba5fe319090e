#include "spc/Capability.h"
#include "spc/ChiSquare.h"

#include <QTest>

using namespace spc;

namespace {

// The four subgroups of five of the chart suite: mean 11, R̄ 3 (σ within 3 / 2.326),
// sum of squares 34 over 20 values (σ overall √(34 / 19)); two values of 9 are the
// lowest.
std::vector<SubgroupValues> fourOfFive()
{
    const QList<QList<double>> lists = {
        {10, 12, 11, 13, 9}, {11, 11, 12, 10, 11}, {12, 14, 13, 11, 10}, {9, 10, 11, 10, 10}};
    std::vector<SubgroupValues> subgroups;
    for (const QList<double> &values : lists)
        subgroups.push_back({0, {}, std::vector<double>(values.begin(), values.end())});
    return subgroups;
}

const double kWithin = 3 / 2.326;
const double kOverall = std::sqrt(34.0 / 19.0);

void compareEstimate(const std::optional<Estimate> &actual, double value, double low, double high)
{
    QVERIFY(actual.has_value());
    QVERIFY2(std::abs(actual->value - value) < 1e-6, qPrintable(QString::number(actual->value)));
    QVERIFY2(std::abs(actual->low - low) < 2e-4, qPrintable(QString::number(actual->low)));
    QVERIFY2(std::abs(actual->high - high) < 2e-4, qPrintable(QString::number(actual->high)));
}

double bissell(double k, int n, int sign)
{
    return k + sign * 1.95996 * std::sqrt(1.0 / (9 * n) + k * k / (2.0 * (n - 1)));
}

} // namespace

// Capability figures worked out by hand from the same values, with chi-square quantiles
// taken from a printed table.
class TestCapability : public QObject
{
    Q_OBJECT

private slots:
    void twoSidedWithIntervals()
    {
        const CapabilityFigures f = Capability::of(fourOfFive(), ChartType::XbarR, {7.0, 16.0});
        QVERIFY(f.enoughData);
        QCOMPARE(f.values, 20);
        QCOMPARE(f.subgroups, 4);
        QCOMPARE(f.mean, 11.0);
        QVERIFY(std::abs(f.sigmaWithin - kWithin) < 1e-12);
        QVERIFY(std::abs(f.sigmaOverall - kOverall) < 1e-12);
        // Cp on Σ(nᵢ - 1) = 16 degrees: χ² 6.908 and 28.845; Pp on 19: 8.907 and 32.852.
        const double cp = 9 / (6 * kWithin);
        compareEstimate(f.cp, cp, cp * std::sqrt(6.908 / 16), cp * std::sqrt(28.845 / 16));
        const double pp = 9 / (6 * kOverall);
        compareEstimate(f.pp, pp, pp * std::sqrt(8.907 / 19), pp * std::sqrt(32.852 / 19));
        const double cpk = 4 / (3 * kWithin);
        compareEstimate(f.cpk, cpk, bissell(cpk, 20, -1), bissell(cpk, 20, 1));
        const double ppk = 4 / (3 * kOverall);
        compareEstimate(f.ppk, ppk, bissell(ppk, 20, -1), bissell(ppk, 20, 1));
        QCOMPARE(f.ppmObserved, 0.0);
    }

    void oneSidedLimits()
    {
        const CapabilityFigures upper = Capability::of(fourOfFive(), ChartType::XbarR, {{}, 16.0});
        QVERIFY(!upper.cp && !upper.pp && !upper.cpl);
        QVERIFY(std::abs(upper.cpk->value - 5 / (3 * kWithin)) < 1e-9);
        QCOMPARE(upper.cpu, upper.cpk->value);
        // Both nines lie below 9.5: 2 of 20 values.
        const CapabilityFigures lower = Capability::of(fourOfFive(), ChartType::XbarR, {9.5, {}});
        QVERIFY(!lower.cp && !lower.cpu);
        QVERIFY(std::abs(lower.ppk->value - 1.5 / (3 * kOverall)) < 1e-9);
        QCOMPARE(lower.ppmObserved, 100000.0);
    }

    void notEnoughData_data()
    {
        QTest::addColumn<QList<QList<double>>>("lists");
        QTest::newRow("one subgroup") << QList<QList<double>>{{1, 2, 3}};
        QTest::newRow("no spread") << QList<QList<double>>{{5, 5}, {5, 5}};
        QTest::newRow("nothing") << QList<QList<double>>{};
    }
    void notEnoughData()
    {
        QFETCH(QList<QList<double>>, lists);
        std::vector<SubgroupValues> subgroups;
        std::vector<double> all;
        for (const QList<double> &values : lists) {
            subgroups.push_back({0, {}, std::vector<double>(values.begin(), values.end())});
            all.insert(all.end(), values.begin(), values.end());
        }
        const CapabilityFigures f = Capability::of(subgroups, ChartType::XbarR, {0.0, 10.0});
        QVERIFY(!f.enoughData);
        QVERIFY(!f.cp && !f.cpk && !f.pp && !f.ppk);
        QCOMPARE(f.values, int(all.size()));
        // A plain list of values needs two values that differ.
        QCOMPARE(Capability::overall(all, {0.0, 10.0}).enoughData, lists.size() == 1);
    }

    void chiSquareQuantilesMatchTheTable_data()
    {
        QTest::addColumn<double>("p");
        QTest::addColumn<double>("degrees");
        QTest::addColumn<double>("quantile");
        QTest::newRow("0.025, 1") << 0.025 << 1.0 << 0.000982;
        QTest::newRow("0.975, 1") << 0.975 << 1.0 << 5.024;
        QTest::newRow("0.025, 9") << 0.025 << 9.0 << 2.700;
        QTest::newRow("0.975, 9") << 0.975 << 9.0 << 19.023;
        QTest::newRow("0.975, 100") << 0.975 << 100.0 << 129.561;
        QTest::newRow("0.025, 999") << 0.025 << 999.0 << 913.301;
    }
    void chiSquareQuantilesMatchTheTable()
    {
        QFETCH(double, p);
        QFETCH(double, degrees);
        QFETCH(double, quantile);
        const double found = ChiSquare::quantile(p, degrees);
        QVERIFY2(std::abs(found - quantile) <= 5e-4 * quantile + 1e-6,
                 qPrintable(QString::number(found)));
    }
};

QTEST_GUILESS_MAIN(TestCapability)
#include "tst_capability.moc"

#include "Refusal.h"
#include "TestSuites.h"

#include "stats/HistogramBins.h"
#include "stats/widgets/BgrColor.h"
#include "stats/widgets/Histogram.h"

#include "platform/ProgramError.h"

#include <QImage>
#include <QTest>

#include <cmath>
#include <limits>
#include <numeric>

namespace {

std::vector<HistogramBin> binsOf(const QVector<double> &values, double lower, double upper)
{
    return LoadHistoBins(std::span<const double>(values.constData(), values.size()), lower, upper);
}

qint64 totalCount(const std::vector<HistogramBin> &bins)
{
    return std::accumulate(bins.begin(), bins.end(), qint64(0),
                           [](qint64 sum, const HistogramBin &bin) { return sum + bin.count; });
}

// Every bin's lower edge, then the last upper edge.
QVector<double> edgesOf(const std::vector<HistogramBin> &bins)
{
    QVector<double> edges;
    for (const HistogramBin &bin : bins)
        edges.append(bin.lowerEdge);
    edges.append(bins.back().upperEdge);
    return edges;
}

constexpr quint32 kRed = BgrColor::kRed;
constexpr quint32 kGreen = BgrColor::kGreen;
constexpr quint32 kYellow = BgrColor::kYellow;
constexpr quint32 kBlue = 0xFF0000;
constexpr quint32 kMagenta = 0xFF00FF;

} // namespace

// The histogram of the summary: bins, bar layout, bar colours and what it draws.
class TestHistogram : public QObject
{
    Q_OBJECT

private slots:
    void binsSpanTheWidenedRange()
    {
        const std::vector<HistogramBin> bins = binsOf({}, 0, 10);
        QCOMPARE(int(bins.size()), 22);
        const QVector<double> edges = edgesOf(bins);
        for (int i = 0; i <= 22; ++i)
            QCOMPARE(edges[i], -0.5 + 0.5 * i);
        QCOMPARE(totalCount(bins), 0);
        // Equal or crossed limits give no bins.
        QVERIFY(binsOf({1, 2, 3}, 5, 5).empty());
        QVERIFY(binsOf({1, 2, 3}, 6, 5).empty());
    }

    // Awkward limits, where edges computed by repeated addition would miss: every inner
    // edge sends a value on it to the bin above, the value just below to the bin below,
    // and the limits are exact edges, so no bin seems to straddle a limit.
    void valuesOnEdges_data()
    {
        QTest::addColumn<double>("lower");
        QTest::addColumn<double>("upper");
        QTest::newRow("0.1 .. 0.3") << 0.1 << 0.3;
        QTest::newRow("-17.3 .. 4.9") << -17.3 << 4.9;
        QTest::newRow("1234.56 .. 1234.57") << 1234.56 << 1234.57;
    }

    void valuesOnEdges()
    {
        QFETCH(double, lower);
        QFETCH(double, upper);
        const std::vector<HistogramBin> empty = binsOf({}, lower, upper);
        // Exactly, not within a rounding error: a colour rule tests these edges against the
        // limits with strict comparisons.
        QVERIFY(empty[1].lowerEdge == lower);
        QVERIFY(empty[20].upperEdge == upper);

        const QVector<double> edges = edgesOf(empty);
        for (int k = 1; k < 22; ++k) {
            QCOMPARE(histogramBinIndex(empty, edges[k]), k);
            QCOMPARE(histogramBinIndex(empty, std::nextafter(edges[k], -1e300)), k - 1);
        }
        QCOMPARE(histogramBinIndex(empty, edges[0]), 0);
        QCOMPARE(histogramBinIndex(empty, edges[22]), 21);

        // Counted the same way when a whole array is binned.
        const std::vector<HistogramBin> bins = binsOf(edges, lower, upper);
        for (int k = 0; k < 22; ++k)
            QCOMPARE(bins[k].count, k == 21 ? 2 : 1);
    }

    // Values beyond the drawing range count in the outer bins, which say so, so the bars
    // beyond a limit add up to the count beyond it; what is not a number is left out.
    void valuesBeyondTheRangeCountInTheOuterBins()
    {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        const double inf = std::numeric_limits<double>::infinity();
        const std::vector<HistogramBin> bins =
            binsOf({-0.5000001, 10.5000001, -100, 100, nan, inf, -inf, -0.5, 10.5, 5}, 0, 10);
        QCOMPARE(totalCount(bins), 9);
        QCOMPARE(bins[0].count, 4);
        QCOMPARE(bins[11].count, 1);
        QCOMPARE(bins[21].count, 4);
        QVERIFY(bins[0].holdsFarValues && bins[21].holdsFarValues && !bins[11].holdsFarValues);
        // A value on the outer edge is inside the drawing range.
        QVERIFY(!binsOf({-0.5, 10.5}, 0, 10)[0].holdsFarValues);
    }

    void barLayout_data()
    {
        QTest::addColumn<int>("plotWidth");
        QTest::addColumn<int>("barWidth");
        QTest::addColumn<int>("leftOffset");
        // (w − 20) / 22 and (w − 22 × bar) / 2 − 1, halves to even.
        QTest::newRow("471: 20.5 and 14.5 go down") << 471 << 20 << 14;
        QTest::newRow("493: 21.5 and 3.5 go up") << 493 << 22 << 4;
        QTest::newRow("too narrow for bars") << 8 << 0 << 3;
    }

    void barLayout()
    {
        QFETCH(int, plotWidth);
        QFETCH(int, barWidth);
        QFETCH(int, leftOffset);
        const HistogramBars bars = AdjustBars(plotWidth, 200, binsOf({5}, 0, 10));
        QCOMPARE(bars.barWidth, barWidth);
        QCOMPARE(bars.leftOffset, leftOffset);
        QCOMPARE(bars.barLeft(3), leftOffset + 3 * barWidth);
    }

    void fullestBinStandsAtEightyPercent()
    {
        std::vector<HistogramBin> bins = binsOf({}, 0, 10);
        QVERIFY(!AdjustBars(460, 200, bins).scale);
        bins[4].count = 40;
        bins[7].count = 10;
        const HistogramBars bars = AdjustBars(460, 200, bins);
        QVERIFY(bars.scale);
        QCOMPARE(bars.barHeight(bins[4]), 160.0);
        QCOMPARE(bars.barHeight(bins[7]), 40.0);
    }

    void barColours()
    {
        const std::vector<HistogramBin> bins = binsOf({}, 0, 10);
        const HistogramLimits limits{0, 10, 2, 8};

        // Left at their default, every colour is the bar colour.
        for (const quint32 color : ColorBars(bins, limits, HistogramColors()))
            QCOMPARE(color, kGreen);

        HistogramColors colors;
        colors.limitLower = kRed;
        colors.limitUpper = kBlue;
        colors.warningLower = kYellow;
        colors.warningUpper = kMagenta;
        const std::vector<quint32> set = ColorBars(bins, limits, colors);
        // Bin i spans -0.5 + 0.5 i .. 0 + 0.5 i.
        QCOMPARE(set[0], kRed);      // -0.5 .. 0: beyond the lower limit
        QCOMPARE(set[1], kYellow);   // 0 .. 0.5: below the lower warning
        QCOMPARE(set[4], kYellow);   // 1.5 .. 2 straddles nothing but lies below 2
        QCOMPARE(set[5], kGreen);    // 2 .. 2.5: from the warning limit on
        QCOMPARE(set[16], kGreen);   // 7.5 .. 8: up to the upper warning
        QCOMPARE(set[17], kMagenta); // 8 .. 8.5
        QCOMPARE(set[20], kMagenta); // 9.5 .. 10: on the limit, not beyond
        QCOMPARE(set[21], kBlue);    // 10 .. 10.5

        // A limit colour equal to the bar colour switches its test off: the outer bins
        // fall through to the warning rules.
        colors.limitLower = kGreen;
        colors.limitUpper = kGreen;
        const std::vector<quint32> off = ColorBars(bins, limits, colors);
        QCOMPARE(off[0], kYellow);
        QCOMPARE(off[21], kMagenta);
        colors.warningLower = kGreen;
        QCOMPARE(ColorBars(bins, limits, colors)[1], kGreen);
    }

    void warningAndCrossedLimits()
    {
        Histogram histogram;
        // Warning limits follow the specification limits until they are set.
        histogram.setLimits(20, 30);
        QCOMPARE(histogram.WarningLower(), 20.0);
        QCOMPARE(histogram.WarningUpper(), 30.0);
        histogram.setWarningLower(22);
        histogram.setLimits(-5, 5);
        QCOMPARE(histogram.WarningLower(), 22.0);
        QCOMPARE(histogram.WarningUpper(), 5.0);

        const auto error = refusal([&] { histogram.setLimitLower(6); });
        QVERIFY2(error, "a lower limit above the upper one was taken");
        QCOMPARE(error->source(), QStringLiteral("Histogram.LimitLower"));
        QCOMPARE(histogram.LimitLower(), -5.0);
        QVERIFY_THROWS_EXCEPTION(ProgramError, histogram.setLimitUpper(-6));
        QCOMPARE(histogram.LimitUpper(), 5.0);
    }

    void autoRefreshDecidesWhenValuesAreCounted()
    {
        Histogram histogram;
        histogram.setValues({1, 2, 3});
        QCOMPARE(totalCount(histogram.bins()), 3);

        histogram.setAutoRefresh(false);
        histogram.setValues({1, 2, 3, 4, 5});
        histogram.setLimits(0, 4.5);
        QCOMPARE(totalCount(histogram.bins()), 3);
        histogram.Refresh();
        QCOMPARE(totalCount(histogram.bins()), 5);
        QCOMPARE(histogram.bins().front().lowerEdge, -0.225);
    }

    // Values below the lower limit stand in the first bar, drawn in the lower limit's
    // colour; with equal limits nothing is drawn.
    void drawsColouredBars()
    {
        Histogram histogram;
        histogram.resize(480, 240);
        histogram.setLimitLowerColor(Qt::red);
        histogram.setValues({-0.2, -0.3, 5, 5, 5, 5});

        QCOMPARE(histogram.barRect(11).height(), qRound(histogram.plotRect().height() * 0.8));
        const QRect outside = histogram.barRect(0);
        QVERIFY(!outside.isEmpty());
        QCOMPARE(outside.bottom(), histogram.plotRect().bottom());
        QImage image = histogram.grab().toImage();
        QCOMPARE(image.pixelColor(outside.center()), QColor(Qt::red));
        QCOMPARE(image.pixelColor(histogram.barRect(11).center()), QColor(0, 255, 0));
        QVERIFY(histogram.barRect(5).isEmpty());

        histogram.setLimits(5, 5);
        QVERIFY(histogram.bins().empty());
        QVERIFY(histogram.barRect(11).isEmpty());
        image = histogram.grab().toImage();
        const QColor base = histogram.palette().color(QPalette::Base);
        QCOMPARE(image.pixelColor(outside.center()), base);
        QCOMPARE(image.pixelColor(histogram.plotRect().center()), base);
    }
};

CORVANE_TEST_SUITE(TestHistogram)
#include "tst_histogram.moc"

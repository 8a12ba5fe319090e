#include "TestSuites.h"

#include "stats/MeterLayout.h"

#include <QTest>

#include <cmath>
#include <limits>

namespace {

constexpr double kMarkerWidth = 11;

MeterLayout::Input input(double barWidth, double lower, double upper, double current,
                         double minimum, double average, double maximum)
{
    MeterLayout::Input in;
    in.barWidth = barWidth;
    in.markerWidth = kMarkerWidth;
    in.limitLower = lower;
    in.limitUpper = upper;
    in.values = {current, minimum, average, maximum};
    return in;
}

// The left edges of the current, minimum, average and maximum markers.
QList<double> lefts(const MeterLayout &layout)
{
    return {layout.markerLeft(MeterMarker::Current), layout.markerLeft(MeterMarker::Minimum),
            layout.markerLeft(MeterMarker::Average), layout.markerLeft(MeterMarker::Maximum)};
}

} // namespace

Q_DECLARE_METATYPE(MeterMarker)

// Scale mapping and marker placement of the horizontal meter.
class TestMeterLayout : public QObject
{
    Q_OBJECT

private slots:
    // A bar of 440 shows 0 .. 10 as 1.1 × 10 = 11 units: 40 per unit, the limits 20 in
    // from each end.
    void limitRangeIsCentredInTheBar()
    {
        const std::optional<double> scale = MeterLayout::scaleFor(440, 0, 10);
        QVERIFY(scale);
        QCOMPARE(*scale, 40.0);
        QCOMPARE(MeterLayout::originFor(440, 0, 10, *scale), 20.0);
        QCOMPARE(MeterLayout::lowerLimitPosition(440), 20.0);
        QCOMPARE(MeterLayout::upperLimitPosition(440), 420.0);

        // Any limits map to the same places on the same bar.
        const std::optional<double> other = MeterLayout::scaleFor(440, -250, 1250);
        QVERIFY(other);
        const double origin = MeterLayout::originFor(440, -250, 1250, *other);
        QCOMPARE(origin, 20.0);
        QCOMPARE(origin + 1500 * *other, 420.0);
    }

    void noScaleForEqualOrUnusableLimits()
    {
        QVERIFY(!MeterLayout::scaleFor(440, 5, 5));
        QVERIFY(!MeterLayout::scaleFor(440, 0, std::numeric_limits<double>::infinity()));
        QVERIFY(!MeterLayout::scaleFor(440, std::numeric_limits<double>::quiet_NaN(), 1));
    }

    void markerOffsets_data()
    {
        QTest::addColumn<MeterMarker>("marker");
        QTest::addColumn<double>("value");
        QTest::addColumn<double>("left");
        // value × 40 + 20 − fraction × 11
        QTest::newRow("current, half") << MeterMarker::Current << 5.0 << 214.5;
        QTest::newRow("average, 0.6") << MeterMarker::Average << 5.0 << 213.4;
        QTest::newRow("maximum, 0.7") << MeterMarker::Maximum << 7.5 << 312.3;
        QTest::newRow("on the upper limit") << MeterMarker::Current << 10.0 << 414.5;
    }

    void markerOffsets()
    {
        QFETCH(MeterMarker, marker);
        QFETCH(double, value);
        QFETCH(double, left);
        QCOMPARE(MeterLayout::markerLeft(value, 0, 40, 20, kMarkerWidth, marker), left);

        MeterLayout layout;
        MeterLayout::Input in = input(440, 0, 10, 0, 0, 0, 0);
        in.values[meterMarkerIndex(marker)] = value;
        QVERIFY(layout.place(in));
        QCOMPARE(layout.markerLeft(marker), left);
    }

    // Equal current and average values still show two triangles, a tenth of a marker
    // width apart.
    void equalCurrentAndAverageStayApart()
    {
        MeterLayout layout;
        layout.place(input(440, 0, 10, 6, 2, 6, 9));
        QCOMPARE(layout.markerLeft(MeterMarker::Current) - layout.markerLeft(MeterMarker::Average),
                 1.1);
    }

    // A value far outside the limits pins its marker to the bar's edge instead of
    // leaving the control; so do infinite values.
    void valuesOutsideTheLimitsArePinned()
    {
        const double inf = std::numeric_limits<double>::infinity();
        MeterLayout layout;
        layout.place(input(440, 0, 10, 1e6, -1e6, inf, -inf));
        QCOMPARE(lefts(layout), (QList{426.0, 0.0, 426.0, 0.0}));
    }

    // Before the second distinct weld a characteristic without limits has equal ends: the
    // scale stays and the markers keep their places.
    void equalLimitsKeepMarkersInPlace()
    {
        MeterLayout layout;
        QVERIFY(layout.place(input(440, 0, 10, 5, 2.5, 5, 7.5)));
        const QList<double> placed = lefts(layout);

        QVERIFY(!layout.place(input(440, 3, 3, 3, 3, 3, 3)));
        QCOMPARE(lefts(layout), placed);
        QCOMPARE(layout.scale(), 40.0);

        // A narrower bar still holds them: the maximum marker is pulled inside.
        QVERIFY(!layout.place(input(300, 3, 3, 3, 3, 3, 3)));
        QCOMPARE(lefts(layout), (QList{placed[0], placed[1], placed[2], 300 - kMarkerWidth - 3}));

        // The next real range places them anew.
        QVERIFY(layout.place(input(440, 0, 10, 0, 0, 0, 0)));
        QCOMPARE(layout.markerLeft(MeterMarker::Current), 14.5);
    }

    void valueThatIsNotANumberKeepsItsMarker()
    {
        MeterLayout layout;
        layout.place(input(440, 0, 10, 5, 2.5, 5, 7.5));
        layout.place(input(440, 0, 10, std::nan(""), 1, 1, 1));
        QCOMPARE(lefts(layout).first(2), (QList{214.5, 54.5}));
    }

    void keepInsideBar_data()
    {
        QTest::addColumn<double>("left");
        QTest::addColumn<double>("kept");
        QTest::newRow("inside") << 100.0 << 100.0;
        QTest::newRow("negative edge to 0") << -0.5 << 0.0;
        QTest::newRow("right edge on the bar's end stays") << 429.0 << 429.0;
        QTest::newRow("right edge past the end") << 429.5 << 426.0;
    }

    void keepInsideBar()
    {
        QFETCH(double, left);
        QFETCH(double, kept);
        QCOMPARE(MeterLayout::keepInsideBar(left, kMarkerWidth, 440), kept);
    }
};

CORVANE_TEST_SUITE(TestMeterLayout)
#include "tst_meterlayout.moc"

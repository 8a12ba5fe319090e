#include "Refusal.h"
#include "TestSuites.h"

#include "stats/widgets/BgrColor.h"
#include "stats/widgets/HorizontalMeter.h"

#include "platform/ProgramError.h"

#include <QImage>
#include <QPalette>
#include <QTest>

namespace {

constexpr int kWidth = 440;
constexpr int kHeight = 50;

const QString kLimitsCrossed = QStringLiteral("Invalid Value! LimitLower > LimitUpper!");

// A meter as a monitor row shows it: switched on, with a unit and values.
void showData(HorizontalMeter &meter)
{
    meter.resize(kWidth, kHeight);
    meter.setUnit(QStringLiteral("mm"));
    meter.setMeterEnabled(true);
    meter.Refresh();
}

QImage grabImage(HorizontalMeter &meter)
{
    return meter.grab().toImage();
}

// Where the apex of a marker must stand: the pinned position, column 5 of its box, on the
// first row under the bar.
QPoint pinnedRightApex(const HorizontalMeter &meter)
{
    return QPoint(meter.barRect().left() + kWidth - HorizontalMeter::kMarkerWidth - 3 + 5,
                  meter.barRect().bottom() + 1);
}

// A meter showing data with its current value far beyond the upper limit, in red.
void pinCurrentMarker(HorizontalMeter &meter)
{
    showData(meter);
    meter.setValueCurrent(1e6);
    meter.setColorCurrent(Qt::red);
}

} // namespace

// The horizontal meter of a monitor row: its properties, the limit rule that makes the
// owner widen before it narrows, and what it actually paints.
class TestHorizontalMeter : public QObject
{
    Q_OBJECT

private slots:
    void blueGreenRedColoursConvert()
    {
        QCOMPARE(BgrColor::toColor(0x123456), QColor(0x56, 0x34, 0x12));
        QCOMPARE(BgrColor::fromColor(QColor(0x56, 0x34, 0x12)), 0x123456u);
    }

    // A limit that would cross the other is refused and leaves both as they were; equal
    // limits are allowed.
    void crossingLimitsAreRefused()
    {
        HorizontalMeter meter;
        const auto refused = [&](auto call, const char *source, double lower, double upper) {
            const auto error = refusal(call);
            QVERIFY(error);
            QCOMPARE(error->description(), kLimitsCrossed);
            QCOMPARE(error->source(), QLatin1String(source));
            QCOMPARE(meter.LimitLower(), lower);
            QCOMPARE(meter.LimitUpper(), upper);
        };
        refused([&] { meter.setLimitLower(20); }, "HorizontalMeter.LimitLower", 0, 10);
        refused([&] { meter.setLimitUpper(-0.5); }, "HorizontalMeter.LimitUpper", 0, 10);
        meter.setLimitLower(10);
        QCOMPARE(meter.LimitLower(), 10.0);
        refused([&] { meter.setLimits(7, 6); }, "HorizontalMeter.setLimits", 10, 10);
    }

    // The monitor moves the scale after every weld; a range that jumps past the old one
    // in either direction must never pass through crossed limits.
    void rangesMoveInTheSafeOrder()
    {
        HorizontalMeter meter;
        const QList<QPair<double, double>> ranges = {{20, 30}, {-50, -40},  {-45, 100},    {5, 5},
                                                     {4, 6},   {1000, 1e6}, {-1e6, -1000}, {0, 0}};
        for (const auto &[lower, upper] : ranges) {
            meter.setLimits(lower, upper);
            QCOMPARE(meter.LimitLower(), lower);
            QCOMPARE(meter.LimitUpper(), upper);
        }

        // Narrowing first is exactly what the rule refuses.
        meter.setLimits(0, 10);
        QVERIFY(refusal([&] { meter.setLimitLower(20); }));
        meter.setLimitUpper(30);
        meter.setLimitLower(20);
        QCOMPARE(meter.LimitLower(), 20.0);
    }

    void valuesReachTheFaceOnlyThroughALayout()
    {
        HorizontalMeter meter;
        showData(meter);
        const double before = meter.face().markerLeft[meterMarkerIndex(MeterMarker::Current)];
        QCOMPARE(meter.face().valueTexts[meterMarkerIndex(MeterMarker::Current)],
                 QStringLiteral("5.0000 mm"));

        meter.setValueCurrent(9);
        QCOMPARE(meter.face().markerLeft[meterMarkerIndex(MeterMarker::Current)], before);
        meter.Refresh();
        QVERIFY(meter.face().markerLeft[meterMarkerIndex(MeterMarker::Current)] > before);
        QCOMPARE(meter.face().valueTexts[meterMarkerIndex(MeterMarker::Current)],
                 QStringLiteral("9.0000 mm"));

        meter.setAutoRefresh(true);
        meter.setNumberFormat(QStringLiteral("0.0"));
        meter.setValueMaximum(12.25);
        QCOMPARE(meter.face().valueTexts[meterMarkerIndex(MeterMarker::Maximum)],
                 QStringLiteral("12.3 mm"));
        QCOMPARE(meter.face().frame.upperLabel, QStringLiteral("10.0"));
        QVERIFY(meter.toolTip().contains(QStringLiteral("12.3 mm")));
    }

    void labelsFollowEnabledAndHideOptions()
    {
        HorizontalMeter meter;
        meter.resize(kWidth, kHeight);
        meter.setUnit(QStringLiteral("J"));
        meter.Refresh();
        QVERIFY(!meter.face().frame.lowerLabelShown);
        QVERIFY(!meter.face().frame.upperLabelShown);
        QVERIFY(!meter.face().frame.unitShown);
        QVERIFY(!meter.face().markersShown);

        meter.setMeterEnabled(true);
        meter.setHideLimitUpper(true);
        meter.Refresh();
        QVERIFY(meter.face().frame.lowerLabelShown);
        QVERIFY(!meter.face().frame.upperLabelShown);
        QVERIFY(meter.face().frame.unitShown);

        meter.setUnit(QString());
        meter.Refresh();
        QVERIFY(!meter.face().frame.unitShown);
    }

    // After a weld beyond a limit the monitor turns the bar red; after the next good one
    // green again. The bar sits in the cached frame, which must follow.
    void barTakesItsColourOnEveryRefresh()
    {
        HorizontalMeter meter;
        showData(meter);
        const QPoint barMiddle(meter.barRect().center().x(), meter.barRect().center().y());

        meter.setColorMeter(BgrColor::toColor(BgrColor::kRed));
        meter.setValueCurrent(12);
        meter.Refresh();
        QCOMPARE(grabImage(meter).pixelColor(barMiddle), QColor(255, 0, 0));

        meter.setColorMeter(BgrColor::toColor(BgrColor::kGreen));
        // Without a refresh the face stays as last laid out.
        QCOMPARE(grabImage(meter).pixelColor(barMiddle), QColor(255, 0, 0));
        meter.Refresh();
        QCOMPARE(grabImage(meter).pixelColor(barMiddle), QColor(0, 255, 0));
    }

    void markerBeyondTheLimitIsPinnedToTheEdge()
    {
        HorizontalMeter meter;
        pinCurrentMarker(meter);
        meter.Refresh();

        const QImage image = grabImage(meter);
        const QPoint apex = pinnedRightApex(meter);
        QCOMPARE(image.pixelColor(apex), QColor(Qt::red));
        // The triangle's base row is nine pixels wide, its apex one.
        QCOMPARE(image.pixelColor(apex + QPoint(-4, 4)), QColor(Qt::red));
        QCOMPARE(image.pixelColor(apex + QPoint(4, 4)), QColor(Qt::red));
        const QColor background = meter.palette().color(QPalette::Window);
        QCOMPARE(image.pixelColor(apex + QPoint(5, 4)), background);
        QCOMPARE(image.pixelColor(apex + QPoint(-1, 0)), background);

        // Switched off, the meter shows no markers at all.
        meter.setMeterEnabled(false);
        meter.Refresh();
        const QImage off = grabImage(meter);
        QCOMPARE(off.pixelColor(apex), background);
        const QRect box = meter.markerBox(MeterMarker::Minimum);
        QCOMPARE(off.pixelColor(box.left() + 5, box.top() + 3), background);
    }

    void resizeLaysTheMarkersOutAgain()
    {
        HorizontalMeter meter;
        showData(meter);
        meter.setValueCurrent(10);
        meter.setColorCurrent(Qt::red);
        meter.Refresh();
        meter.resize(kWidth * 2, kHeight);
        const QImage image = grabImage(meter);
        // The upper limit of a bar of 880 stands at 840; the apex points at it.
        const QPoint apex(meter.barRect().left() + 840, meter.barRect().bottom() + 1);
        QCOMPARE(image.pixelColor(apex), QColor(Qt::red));
    }

    // In a tall row (a maximised window) the markers grow with the row: three times as
    // large at 130 pixels, still pinned inside the bar.
    void tallRowsDrawLargerMarkers()
    {
        HorizontalMeter meter;
        pinCurrentMarker(meter);
        meter.resize(kWidth, 130);
        const QImage image = grabImage(meter);
        const QRect box = meter.markerBox(MeterMarker::Current);
        QCOMPARE(box.size(),
                 QSize(3 * HorizontalMeter::kMarkerWidth, 3 * HorizontalMeter::kMarkerHeight));
        QCOMPARE(box.right(), meter.barRect().left() + kWidth - 4);
        // The triangle's base row is 27 pixels wide.
        QCOMPARE(image.pixelColor(box.left() + 29, box.top() + 17), QColor(Qt::red));
    }
};

CORVANE_TEST_SUITE(TestHorizontalMeter)
#include "tst_horizontalmeter.moc"

#pragma once

#include <array>
#include <optional>

// The four value markers under a horizontal meter's bar.
enum class MeterMarker { Current, Minimum, Average, Maximum };
inline constexpr int kMeterMarkerCount = 4;

inline constexpr int meterMarkerIndex(MeterMarker marker)
{
    return static_cast<int>(marker);
}

// Where a horizontal meter puts its markers. The bar shows 1.1 times the range between
// the lower and the upper limit, centred, so both limits sit inside the bar with a margin
// of half the spare width at each end. All positions are in the bar's own coordinates
// (0 is its left edge) and in the same unit as the bar's width.
class MeterLayout
{
public:
    struct Input
    {
        double barWidth = 0;
        double markerWidth = 0;
        double limitLower = 0;
        double limitUpper = 0;
        std::array<double, kMeterMarkerCount> values{};
    };

    // Which part of its own width a marker box stands left of its value. The average and
    // the maximum marker sit a little further right than the other two, so that equal
    // values still show as separate triangles.
    static double markerFraction(MeterMarker marker);

    // Width per unit of value; none when the limits are equal (or not usable numbers),
    // in which case the markers keep their places.
    static std::optional<double> scaleFor(double barWidth, double limitLower, double limitUpper);
    // The position of limitLower: half of the width that the limit range leaves spare.
    static double originFor(double barWidth, double limitLower, double limitUpper, double scale);

    static double markerLeft(double value, double limitLower, double scale, double origin,
                             double markerWidth, MeterMarker marker);
    // A box with a negative left edge moves to 0; one whose right edge passes the bar's
    // width moves to the width less its own width less 3.
    static double keepInsideBar(double left, double markerWidth, double barWidth);

    // Lays the markers out for new values. With equal limits the scale is kept and the
    // markers stay where they were (only kept inside a bar that may have shrunk). A value
    // that is not a number leaves its marker in place. Returns false when the scale was
    // kept.
    bool place(const Input &input);

    double scale() const { return m_scale; }
    double origin() const { return m_origin; }
    double markerLeft(MeterMarker marker) const { return m_left[meterMarkerIndex(marker)]; }

    // Positions of the two limits on a bar of a given width; they depend on the width
    // alone, because the limit range always fills the same share of the bar.
    static double lowerLimitPosition(double barWidth);
    static double upperLimitPosition(double barWidth);

private:
    double m_scale = 0;
    double m_origin = 0;
    std::array<double, kMeterMarkerCount> m_left{};
};

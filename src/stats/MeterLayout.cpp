#include "MeterLayout.h"

#include <cmath>

namespace {

// The bar represents this many limit ranges.
constexpr double kBarToRange = 1.1;

} // namespace

double MeterLayout::markerFraction(MeterMarker marker)
{
    switch (marker) {
    case MeterMarker::Average:
        return 0.6;
    case MeterMarker::Maximum:
        return 0.7;
    case MeterMarker::Current:
    case MeterMarker::Minimum:
        break;
    }
    return 0.5;
}

std::optional<double> MeterLayout::scaleFor(double barWidth, double limitLower, double limitUpper)
{
    const double range = limitUpper - limitLower;
    if (!std::isfinite(range) || range == 0 || !std::isfinite(barWidth))
        return std::nullopt;
    return barWidth / (range * kBarToRange);
}

double MeterLayout::originFor(double barWidth, double limitLower, double limitUpper, double scale)
{
    return (barWidth - (limitUpper - limitLower) * scale) / 2;
}

double MeterLayout::markerLeft(double value, double limitLower, double scale, double origin,
                               double markerWidth, MeterMarker marker)
{
    return (value - limitLower) * scale + origin - markerFraction(marker) * markerWidth;
}

double MeterLayout::keepInsideBar(double left, double markerWidth, double barWidth)
{
    if (left < 0)
        left = 0;
    if (left + markerWidth > barWidth)
        left = barWidth - markerWidth - 3;
    return left;
}

bool MeterLayout::place(const Input &input)
{
    const std::optional<double> scale =
        scaleFor(input.barWidth, input.limitLower, input.limitUpper);
    if (scale) {
        m_scale = *scale;
        m_origin = originFor(input.barWidth, input.limitLower, input.limitUpper, m_scale);
    }
    for (int i = 0; i < kMeterMarkerCount; ++i) {
        const auto marker = static_cast<MeterMarker>(i);
        double left = m_left[i];
        if (scale && !std::isnan(input.values[i]))
            left = markerLeft(input.values[i], input.limitLower, m_scale, m_origin,
                              input.markerWidth, marker);
        m_left[i] = keepInsideBar(left, input.markerWidth, input.barWidth);
    }
    return scale.has_value();
}

double MeterLayout::lowerLimitPosition(double barWidth)
{
    return (barWidth - barWidth / kBarToRange) / 2;
}

double MeterLayout::upperLimitPosition(double barWidth)
{
    return barWidth - lowerLimitPosition(barWidth);
}

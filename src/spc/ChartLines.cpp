#include "ChartLines.h"

namespace spc {

void ChartLine::append(double key, double value)
{
    keys.push_back(key);
    values.push_back(value);
}

void ChartLine::appendStep(double previousKey, double key, double value, bool last)
{
    if (values.empty()) {
        append(key, value);
    } else if (values.back() != value) {
        // The step lies halfway between the last point of the old value and this one.
        if (keys.back() != previousKey)
            append(previousKey, values.back());
        append(key, value);
    } else if (last) {
        append(key, value);
    }
}

double ChartLines::keyOf(const QDateTime &time)
{
    return double(time.toMSecsSinceEpoch()) / 1000.0;
}

QDateTime ChartLines::timeOf(double key)
{
    return QDateTime::fromMSecsSinceEpoch(qint64(key * 1000.0 + (key < 0 ? -0.5 : 0.5)));
}

ChartLines ChartLines::of(const Chart &chart)
{
    ChartLines lines;
    const std::size_t count = chart.points.size();
    lines.x.keys.reserve(count);
    lines.x.values.reserve(count);
    constexpr double kZone[4] = {1, -1, 2, -2};
    // The last point with a spread closes the lower chart's step lines.
    std::size_t lastSpread = count;
    for (std::size_t i = count; i-- > 0;)
        if (chart.points[i].spread) {
            lastSpread = i;
            break;
        }
    for (std::size_t i = 0; i < count; ++i) {
        const ChartPoint &p = chart.points[i];
        const double key = keyOf(p.dateTime);
        const bool last = i + 1 == count;
        const double previous = lines.x.keys.empty() ? key : lines.x.keys.back();
        lines.x.append(key, p.x);
        lines.xCentre.appendStep(previous, key, p.xCentre, last);
        lines.xUpper.appendStep(previous, key, p.xUpper, last);
        lines.xLower.appendStep(previous, key, p.xLower, last);
        for (int z = 0; z < 4; ++z)
            lines.zones[z].appendStep(previous, key, p.xCentre + kZone[z] * p.xSigma, last);
        if (!p.xRules.isEmpty())
            lines.xMarked.push_back({key, p.x, p.xRules, false});
        if (!p.spread)
            continue;
        const bool lastOfSpread = i == lastSpread;
        const double previousSpread = lines.spread.keys.empty() ? key : lines.spread.keys.back();
        lines.spread.append(key, *p.spread);
        lines.spreadCentre.appendStep(previousSpread, key, p.spreadCentre, lastOfSpread);
        lines.spreadUpper.appendStep(previousSpread, key, p.spreadUpper, lastOfSpread);
        lines.spreadLower.appendStep(previousSpread, key, p.spreadLower, lastOfSpread);
        if (p.spreadBeyondLimits)
            lines.spreadMarked.push_back({key, *p.spread, {}, true});
    }
    return lines;
}

} // namespace spc

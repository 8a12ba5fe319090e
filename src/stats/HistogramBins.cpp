#include "HistogramBins.h"

#include <algorithm>
#include <cmath>

namespace {

// Share of the specification range added at each end of the drawing range.
constexpr double kMargin = 0.05;
// Bins between the two limits: the outer two bins lie beyond them.
constexpr int kInnerBins = kHistogramBinCount - 2;

} // namespace

std::vector<HistogramBin> LoadHistoBins(std::span<const double> values, double limitLower,
                                        double limitUpper, std::span<const ValueCount> folded)
{
    const double range = limitUpper - limitLower;
    if (!(range > 0) || !std::isfinite(range))
        return {};

    const double margin = range * kMargin;
    std::vector<HistogramBin> bins(kHistogramBinCount);
    bins.front().lowerEdge = limitLower - margin;
    bins.back().upperEdge = limitUpper + margin;
    for (int i = 1; i < kHistogramBinCount; ++i) {
        // std::lerp is exact at 0 and 1: edge 1 is limitLower, edge 21 is limitUpper.
        const double edge = std::lerp(limitLower, limitUpper, double(i - 1) / kInnerBins);
        bins[i - 1].upperEdge = edge;
        bins[i].lowerEdge = edge;
    }

    const auto add = [&bins](double value, qint64 count) {
        int index = histogramBinIndex(bins, value);
        if (index < 0 && !std::isnan(value)) {
            index = value < bins.front().lowerEdge ? 0 : kHistogramBinCount - 1;
            bins[size_t(index)].holdsFarValues = true;
        }
        if (index >= 0)
            bins[size_t(index)].count += count;
    };
    for (const double value : values)
        add(value, 1);
    for (const ValueCount &entry : folded)
        add(entry.value, entry.count);
    return bins;
}

int histogramBinIndex(const std::vector<HistogramBin> &bins, double value)
{
    if (bins.empty())
        return -1;
    const double low = bins.front().lowerEdge;
    const double high = bins.back().upperEdge;
    if (!(value >= low && value <= high))
        return -1;
    const int last = int(bins.size()) - 1;
    int index = std::clamp(int((value - low) / (high - low) * double(bins.size())), 0, last);
    // The division may land one bin off near an edge; the stored edges decide.
    while (index < last && value >= bins[index + 1].lowerEdge)
        ++index;
    while (index > 0 && value < bins[index].lowerEdge)
        --index;
    return index;
}

double roundHalfEven(double value)
{
    const double rounded = std::round(value);
    if (std::fabs(value - std::trunc(value)) == 0.5)
        return 2 * std::round(value / 2);
    return rounded;
}

HistogramBars AdjustBars(int plotWidth, int plotHeight, const std::vector<HistogramBin> &bins)
{
    HistogramBars bars;
    const int count = kHistogramBinCount;
    bars.barWidth = std::max(0, int(roundHalfEven(double(plotWidth - 20) / count)));
    bars.leftOffset = int(roundHalfEven(double(plotWidth - count * bars.barWidth) / 2 - 1));
    qint64 largest = 0;
    for (const HistogramBin &bin : bins)
        largest = std::max(largest, bin.count);
    if (largest > 0)
        bars.scale = plotHeight * 0.8 / double(largest);
    return bars;
}

quint32 ColorBar(const HistogramBin &bin, const HistogramLimits &limits,
                 const HistogramColors &colors)
{
    if (bin.lowerEdge < limits.limitLower && colors.limitLower != colors.bar)
        return colors.limitLower;
    if (bin.upperEdge > limits.limitUpper && colors.limitUpper != colors.bar)
        return colors.limitUpper;
    if (bin.lowerEdge >= limits.warningLower || colors.warningLower == colors.bar) {
        if (bin.upperEdge <= limits.warningUpper || colors.warningUpper == colors.bar)
            return colors.bar;
        return colors.warningUpper;
    }
    return colors.warningLower;
}

std::vector<quint32> ColorBars(const std::vector<HistogramBin> &bins, const HistogramLimits &limits,
                               const HistogramColors &colors)
{
    std::vector<quint32> result;
    result.reserve(bins.size());
    for (const HistogramBin &bin : bins)
        result.push_back(ColorBar(bin, limits, colors));
    return result;
}

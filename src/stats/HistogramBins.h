#pragma once

#include "ValueTally.h"

#include <QtGlobal>

#include <optional>
#include <span>
#include <vector>

// The distribution of one characteristic's values as the histogram shows it: 22 bins of
// equal width over the specification range widened by 5% of its width at each end.
inline constexpr int kHistogramBinCount = 22;

struct HistogramBin
{
    double lowerEdge = 0;
    double upperEdge = 0;
    qint64 count = 0;
    // The bin also counts values beyond the drawing range (first and last bin only).
    bool holdsFarValues = false;
};

// Counts the values into the bins in one pass. No bins when the upper limit is not above
// the lower one. A value on an inner edge goes to the bin above it; a value on the outer
// edges is counted in the first or last bin, and so is a value beyond them, which marks
// that bin: the bars beyond a limit then add up to the count beyond it. Values that are
// not numbers are not counted. The limits themselves are exact bin edges (the
// lower edge of bin 1 and the upper edge of bin 20), so no rounding error makes a bin
// seem to straddle a limit. Folded values of a long run count with their tally.
std::vector<HistogramBin> LoadHistoBins(std::span<const double> values, double limitLower,
                                        double limitUpper, std::span<const ValueCount> folded = {});

// The index of the bin that counts value, or -1 when it lies outside the bins.
int histogramBinIndex(const std::vector<HistogramBin> &bins, double value);

// Nearest integer, a half going to the even neighbour.
double roundHalfEven(double value);

// The row of bars in a plot area: bar i stands at leftOffset + i × barWidth and is
// count × scale tall. No scale when every bin is empty.
struct HistogramBars
{
    int barWidth = 0;
    int leftOffset = 0;
    std::optional<double> scale;

    int barLeft(int index) const { return leftOffset + index * barWidth; }
    double barHeight(const HistogramBin &bin) const
    {
        return scale ? double(bin.count) * *scale : 0;
    }
};

// Bar width = (plot width − 20) / 22, left offset = (plot width − 22 × bar width) / 2 − 1,
// both rounded half to even; the fullest bin stands 80% of the plot height tall. A plot
// too narrow for bars gets width 0.
HistogramBars AdjustBars(int plotWidth, int plotHeight, const std::vector<HistogramBin> &bins);

// Colours are 24-bit values in blue-green-red order.
struct HistogramColors
{
    quint32 bar = 65280;
    quint32 limitLower = 65280;
    quint32 limitUpper = 65280;
    quint32 warningLower = 65280;
    quint32 warningUpper = 65280;
};

struct HistogramLimits
{
    double limitLower = 0;
    double limitUpper = 0;
    double warningLower = 0;
    double warningUpper = 0;
};

// The colour of one bar, tested on its bin's edges, not on the values in it: a bin that
// straddles a limit is coloured as beyond it. A limit colour equal to the bar colour
// switches that limit's test off.
quint32 ColorBar(const HistogramBin &bin, const HistogramLimits &limits,
                 const HistogramColors &colors);
std::vector<quint32> ColorBars(const std::vector<HistogramBin> &bins, const HistogramLimits &limits,
                               const HistogramColors &colors);

#pragma once

#include "ChartType.h"
#include "RuleSet.h"
#include "SubgroupValues.h"

#include <QDateTime>

#include <optional>
#include <span>
#include <vector>

namespace spc {

// What a chart's limits rest on: the centre line of the plotted means and the process
// σ estimated within subgroups. Every point's own limits follow from these and its n.
struct ControlLimits
{
    ChartType type = ChartType::XbarR;
    double centre = 0;
    double sigma = 0;
};

// Which subgroups the limits are estimated from: every subgroup of the window, its first
// `count`, those taken from `from` to `until` (inclusive), or limits frozen earlier.
struct ChartBaseline
{
    enum class Kind { Window, FirstSubgroups, DateRange, Frozen };

    Kind kind = Kind::Window;
    int count = 0;
    QDateTime from;
    QDateTime until;
    ControlLimits frozen;
};

struct ChartRequest
{
    // Follows the subgroups' size when not given.
    std::optional<ChartType> type;
    ChartBaseline baseline;
    RuleSet rules = RuleSet::defaults();
};

// One subgroup on the pair of charts. The upper chart plots x (the subgroup mean, or
// the individual value) against limits at its own n; the lower chart plots the spread
// (range, standard deviation or moving range), which a subgroup of one value (or the
// first individual) does not have.
struct ChartPoint
{
    qint64 subgroupId = 0;
    QDateTime dateTime;
    SubgroupFigures figures;
    double x = 0;
    double xCentre = 0;
    double xLower = 0;
    double xUpper = 0;
    // σ of the plotted value: σ/√n, the width of one zone.
    double xSigma = 0;
    std::optional<double> spread;
    double spreadCentre = 0;
    double spreadLower = 0;
    double spreadUpper = 0;
    RuleSet xRules;
    bool spreadBeyondLimits = false;

    // How many zone widths the point stands from the centre line.
    double zone() const { return (x - xCentre) / xSigma; }
};

enum class ChartStatus {
    Ready,
    // Fewer than two subgroups in the baseline, or no spread within them.
    NotEnoughData,
    // Ranges of more values than the constants are known for.
    SubgroupTooLarge,
};

struct Chart
{
    ChartStatus status = ChartStatus::NotEnoughData;
    ChartType type = ChartType::XbarR;
    ControlLimits limits;
    // The subgroups the limits were estimated from (0 for frozen limits).
    int baselineSubgroups = 0;
    QDateTime baselineFrom;
    QDateTime baselineUntil;
    std::vector<ChartPoint> points;
};

// Control charts with varying subgroup sizes. σ is estimated within subgroups as the
// mean of Rᵢ/d2(nᵢ) or sᵢ/c4(nᵢ) over subgroups of at least two values, or as the mean
// moving range over d2(2); each point then has limits at its own n, which for a constant
// n are the familiar A2/D3/D4 and A3/B3/B4 limits.
class ControlChart
{
public:
    // The chart that suits the largest subgroup.
    static ChartType typeFor(std::span<const SubgroupValues> subgroups);

    // Centre line and σ from the baseline subgroups, or the reason there are none.
    static std::optional<ControlLimits> estimate(std::span<const SubgroupValues> subgroups,
                                                 ChartType type, ChartStatus &problem);

    // σ within subgroups alone (0 when it cannot be estimated).
    static double sigmaWithin(std::span<const SubgroupValues> subgroups, ChartType type);

    // Every subgroup of the window as a point with its limits and the rules it breaks.
    static Chart build(std::span<const SubgroupValues> subgroups, const ChartRequest &request);

    // One point against given limits; `previous` is the plotted value before it (for a
    // moving range).
    static ChartPoint point(const SubgroupValues &subgroup, const ControlLimits &limits,
                            std::optional<double> previous);
};

} // namespace spc

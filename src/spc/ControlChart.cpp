#include "ControlChart.h"

#include "ChartConstants.h"
#include "RunRules.h"

#include <algorithm>
#include <cmath>

namespace spc {

namespace {

// An individuals chart plots each subgroup's mean as one value: for subgroups of one
// value that is the value itself.
double plotted(const SubgroupValues &subgroup)
{
    double sum = 0;
    for (double v : subgroup.values)
        sum += v;
    return subgroup.values.empty() ? 0 : sum / double(subgroup.values.size());
}

bool tooLarge(std::span<const SubgroupValues> subgroups, ChartType type)
{
    if (type != ChartType::XbarR)
        return false;
    return std::any_of(subgroups.begin(), subgroups.end(), [](const SubgroupValues &s) {
        return int(s.values.size()) > ChartConstants::kLargestRangeSubgroup;
    });
}

double centreOf(std::span<const SubgroupValues> subgroups, ChartType type)
{
    double sum = 0;
    std::size_t count = 0;
    for (const SubgroupValues &subgroup : subgroups) {
        if (subgroup.values.empty())
            continue;
        if (type == ChartType::IndividualsMR) {
            sum += plotted(subgroup);
            ++count;
            continue;
        }
        // The grand mean weighs every value alike, so a short subgroup counts for less.
        for (double v : subgroup.values)
            sum += v;
        count += subgroup.values.size();
    }
    return count == 0 ? 0 : sum / double(count);
}

std::span<const SubgroupValues> baselineOf(std::span<const SubgroupValues> subgroups,
                                           const ChartBaseline &baseline)
{
    switch (baseline.kind) {
    case ChartBaseline::Kind::FirstSubgroups:
        return subgroups.first(
            std::min<std::size_t>(std::size_t(std::max(baseline.count, 0)), subgroups.size()));
    case ChartBaseline::Kind::DateRange: {
        // Subgroups are in time order: the range is one contiguous stretch.
        const auto begin =
            std::find_if(subgroups.begin(), subgroups.end(),
                         [&](const SubgroupValues &s) { return s.dateTime >= baseline.from; });
        const auto end = std::find_if(begin, subgroups.end(), [&](const SubgroupValues &s) {
            return s.dateTime > baseline.until;
        });
        return {begin, end};
    }
    case ChartBaseline::Kind::Window:
    case ChartBaseline::Kind::Frozen:
        break;
    }
    return subgroups;
}

} // namespace

ChartType ControlChart::typeFor(std::span<const SubgroupValues> subgroups)
{
    std::size_t largest = 0;
    for (const SubgroupValues &subgroup : subgroups)
        largest = std::max(largest, subgroup.values.size());
    return chartTypeForSize(int(largest));
}

double ControlChart::sigmaWithin(std::span<const SubgroupValues> subgroups, ChartType type)
{
    double sum = 0;
    int count = 0;
    if (type == ChartType::IndividualsMR) {
        std::optional<double> previous;
        for (const SubgroupValues &subgroup : subgroups) {
            if (subgroup.values.empty())
                continue;
            const double x = plotted(subgroup);
            if (previous) {
                sum += std::abs(x - *previous);
                ++count;
            }
            previous = x;
        }
        return count == 0 ? 0 : sum / count / ChartConstants::d2(2);
    }
    for (const SubgroupValues &subgroup : subgroups) {
        const int n = int(subgroup.values.size());
        if (n < 2)
            continue;
        const SubgroupFigures figures = figuresOf(subgroup.values);
        sum += type == ChartType::XbarR ? *figures.range / ChartConstants::d2(n)
                                        : *figures.stddev / ChartConstants::c4(n);
        ++count;
    }
    return count == 0 ? 0 : sum / count;
}

std::optional<ControlLimits> ControlChart::estimate(std::span<const SubgroupValues> subgroups,
                                                    ChartType type, ChartStatus &problem)
{
    if (tooLarge(subgroups, type)) {
        problem = ChartStatus::SubgroupTooLarge;
        return std::nullopt;
    }
    const auto filled = std::count_if(subgroups.begin(), subgroups.end(),
                                      [](const SubgroupValues &s) { return !s.values.empty(); });
    const double sigma = filled < 2 ? 0 : sigmaWithin(subgroups, type);
    if (!(sigma > 0) || !std::isfinite(sigma)) {
        problem = ChartStatus::NotEnoughData;
        return std::nullopt;
    }
    problem = ChartStatus::Ready;
    return ControlLimits{type, centreOf(subgroups, type), sigma};
}

ChartPoint ControlChart::point(const SubgroupValues &subgroup, const ControlLimits &limits,
                               std::optional<double> previous)
{
    ChartPoint p;
    p.subgroupId = subgroup.subgroupId;
    p.dateTime = subgroup.dateTime;
    p.figures = figuresOf(subgroup.values);
    const double sigma = limits.sigma;
    const int n = p.figures.n;
    if (limits.type == ChartType::IndividualsMR) {
        p.x = p.figures.mean;
        p.xSigma = sigma;
        if (previous)
            p.spread = std::abs(p.x - *previous);
        const double d2 = ChartConstants::d2(2);
        const double d3 = ChartConstants::d3(2);
        p.spreadCentre = d2 * sigma;
        p.spreadUpper = (d2 + 3 * d3) * sigma;
        p.spreadLower = std::max(0.0, (d2 - 3 * d3) * sigma);
    } else {
        p.x = p.figures.mean;
        p.xSigma = sigma / std::sqrt(double(std::max(n, 1)));
        if (limits.type == ChartType::XbarR && n >= 2 &&
            n <= ChartConstants::kLargestRangeSubgroup) {
            p.spread = p.figures.range;
            const double d2 = ChartConstants::d2(n);
            const double d3 = ChartConstants::d3(n);
            p.spreadCentre = d2 * sigma;
            p.spreadUpper = (d2 + 3 * d3) * sigma;
            p.spreadLower = std::max(0.0, (d2 - 3 * d3) * sigma);
        } else if (limits.type == ChartType::XbarS && n >= 2) {
            p.spread = p.figures.stddev;
            const double c4 = ChartConstants::c4(n);
            const double width = 3 * sigma * std::sqrt(1 - c4 * c4);
            p.spreadCentre = c4 * sigma;
            p.spreadUpper = c4 * sigma + width;
            p.spreadLower = std::max(0.0, c4 * sigma - width);
        }
    }
    p.xCentre = limits.centre;
    p.xUpper = limits.centre + 3 * p.xSigma;
    p.xLower = limits.centre - 3 * p.xSigma;
    if (p.spread)
        p.spreadBeyondLimits =
            *p.spread > p.spreadUpper || (p.spreadLower > 0 && *p.spread < p.spreadLower);
    return p;
}

Chart ControlChart::build(std::span<const SubgroupValues> subgroups, const ChartRequest &request)
{
    Chart chart;
    std::optional<ControlLimits> limits;
    if (request.baseline.kind == ChartBaseline::Kind::Frozen) {
        limits = request.baseline.frozen;
        chart.status = ChartStatus::Ready;
    } else {
        const ChartType type = request.type.value_or(typeFor(subgroups));
        const std::span<const SubgroupValues> baseline = baselineOf(subgroups, request.baseline);
        limits = estimate(baseline, type, chart.status);
        chart.type = type;
        chart.baselineSubgroups = int(baseline.size());
        if (!baseline.empty()) {
            chart.baselineFrom = baseline.front().dateTime;
            chart.baselineUntil = baseline.back().dateTime;
        }
    }
    if (!limits)
        return chart;
    chart.type = limits->type;
    chart.limits = *limits;
    chart.points.reserve(subgroups.size());
    std::optional<double> previous;
    for (const SubgroupValues &subgroup : subgroups) {
        if (subgroup.values.empty())
            continue;
        chart.points.push_back(point(subgroup, *limits, previous));
        previous = chart.points.back().x;
    }
    RunRules::mark(chart.points, request.rules);
    return chart;
}

} // namespace spc

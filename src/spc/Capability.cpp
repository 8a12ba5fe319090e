#include "Capability.h"

#include "ChiSquare.h"
#include "ControlChart.h"

#include <cmath>

namespace spc {

namespace {

// The normal quantile of 97.5 %: two-sided 95 % intervals.
constexpr double kZ975 = 1.959963984540054;

struct Indices
{
    std::optional<Estimate> both;
    std::optional<Estimate> worst;
    std::optional<double> upper;
    std::optional<double> lower;
};

Indices indices(double mean, double sigma, const SpecificationLimits &limits, int values,
                double degrees)
{
    Indices result;
    if (limits.upper)
        result.upper = (*limits.upper - mean) / (3 * sigma);
    if (limits.lower)
        result.lower = (mean - *limits.lower) / (3 * sigma);
    if (limits.upper && limits.lower) {
        const double c = (*limits.upper - *limits.lower) / (6 * sigma);
        result.both = Estimate{c, c * std::sqrt(ChiSquare::quantile(0.025, degrees) / degrees),
                               c * std::sqrt(ChiSquare::quantile(0.975, degrees) / degrees)};
    }
    std::optional<double> k = result.upper;
    if (result.lower && (!k || *result.lower < *k))
        k = result.lower;
    if (k) {
        const double half =
            kZ975 * std::sqrt(1.0 / (9.0 * values) + *k * *k / (2.0 * (values - 1)));
        result.worst = Estimate{*k, *k - half, *k + half};
    }
    return result;
}

struct Moments
{
    int count = 0;
    double mean = 0;
    double sigma = 0;
    int outside = 0;
};

template <typename EachValue>
Moments momentsOf(EachValue eachValue, const SpecificationLimits &limits)
{
    Moments m;
    double sum = 0;
    eachValue([&](double v) {
        ++m.count;
        sum += v;
        if ((limits.lower && v < *limits.lower) || (limits.upper && v > *limits.upper))
            ++m.outside;
    });
    if (m.count == 0)
        return m;
    m.mean = sum / m.count;
    double squares = 0;
    eachValue([&](double v) { squares += (v - m.mean) * (v - m.mean); });
    m.sigma = m.count < 2 ? 0 : std::sqrt(squares / (m.count - 1));
    return m;
}

void fillOverall(CapabilityFigures &figures, const Moments &m)
{
    figures.values = m.count;
    figures.mean = m.mean;
    figures.sigmaOverall = m.sigma;
    figures.ppmObserved = m.count == 0 ? 0 : 1e6 * m.outside / m.count;
    if (!figures.enoughData)
        return;
    const Indices p = indices(m.mean, m.sigma, figures.limits, m.count, m.count - 1);
    figures.pp = p.both;
    figures.ppk = p.worst;
    figures.ppu = p.upper;
    figures.ppl = p.lower;
}

double withinDegrees(std::span<const SubgroupValues> subgroups, ChartType type, int values)
{
    if (type == ChartType::IndividualsMR)
        return values - 1;
    double degrees = 0;
    for (const SubgroupValues &subgroup : subgroups)
        if (subgroup.values.size() >= 2)
            degrees += double(subgroup.values.size() - 1);
    return degrees;
}

} // namespace

CapabilityFigures Capability::of(std::span<const SubgroupValues> subgroups, ChartType type,
                                 const SpecificationLimits &limits)
{
    CapabilityFigures figures;
    figures.limits = limits;
    const auto eachValue = [&](auto visit) {
        for (const SubgroupValues &subgroup : subgroups)
            for (double v : subgroup.values)
                visit(v);
    };
    const Moments m = momentsOf(eachValue, limits);
    for (const SubgroupValues &subgroup : subgroups)
        figures.subgroups += subgroup.values.empty() ? 0 : 1;
    ChartStatus problem = ChartStatus::Ready;
    const std::optional<ControlLimits> within = ControlChart::estimate(subgroups, type, problem);
    figures.sigmaWithin = within ? within->sigma : 0;
    figures.enoughData = within && figures.subgroups >= 2 && m.sigma > 0;
    fillOverall(figures, m);
    if (!figures.enoughData)
        return figures;
    const Indices c = indices(m.mean, figures.sigmaWithin, limits, m.count,
                              withinDegrees(subgroups, type, m.count));
    figures.cp = c.both;
    figures.cpk = c.worst;
    figures.cpu = c.upper;
    figures.cpl = c.lower;
    return figures;
}

CapabilityFigures Capability::overall(std::span<const double> values,
                                      const SpecificationLimits &limits,
                                      std::span<const std::pair<double, qint64>> tallied)
{
    CapabilityFigures figures;
    figures.limits = limits;
    const Moments m = momentsOf(
        [&](auto visit) {
            for (double v : values)
                visit(v);
            for (const auto &[value, count] : tallied)
                for (qint64 k = 0; k < count; ++k)
                    visit(value);
        },
        limits);
    figures.enoughData = m.count >= 2 && m.sigma > 0;
    fillOverall(figures, m);
    return figures;
}

} // namespace spc

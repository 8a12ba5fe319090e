#pragma once

#include "ChartType.h"
#include "SubgroupValues.h"

#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace spc {

// The specification limits of a characteristic; either may be missing.
struct SpecificationLimits
{
    std::optional<double> lower;
    std::optional<double> upper;
};

// A capability index with its two-sided 95 % confidence interval.
struct Estimate
{
    double value = 0;
    double low = 0;
    double high = 0;
};

// Capability against the specification limits. Cp and Pp need both limits; with one
// limit Cpk and Ppk are the one-sided index of that limit (Cpu/Cpl, Ppu/Ppl).
struct CapabilityFigures
{
    // Fewer than two subgroups, or no spread: no index has a value.
    bool enoughData = false;
    int values = 0;
    int subgroups = 0;
    double mean = 0;
    double sigmaWithin = 0;
    double sigmaOverall = 0;
    SpecificationLimits limits;
    std::optional<Estimate> cp;
    std::optional<Estimate> cpk;
    std::optional<Estimate> pp;
    std::optional<Estimate> ppk;
    std::optional<double> cpu;
    std::optional<double> cpl;
    std::optional<double> ppu;
    std::optional<double> ppl;
    // Values outside the limits, per million values.
    double ppmObserved = 0;
};

// Potential (σ within subgroups) and overall (σ of all values) capability. Intervals:
// chi-square for Cp and Pp, Bissell's normal approximation for Cpk and Ppk. Cp's
// interval counts the degrees of freedom within subgroups, Σ(nᵢ - 1) (for individuals,
// N - 1); Pp's counts N - 1.
class Capability
{
public:
    static CapabilityFigures of(std::span<const SubgroupValues> subgroups, ChartType type,
                                const SpecificationLimits &limits);

    // Overall figures of a plain list of values (no subgroups, so no σ within): σ
    // overall, Pp, Ppk and the out-of-specification share. enoughData needs two values.
    // A long run keeps its oldest values only as a tally of value and count; they count
    // as many times as they were seen.
    static CapabilityFigures overall(std::span<const double> values,
                                     const SpecificationLimits &limits,
                                     std::span<const std::pair<double, qint64>> tallied = {});
};

} // namespace spc

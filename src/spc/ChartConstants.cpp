#include "ChartConstants.h"

#include <array>
#include <cmath>

namespace spc {

namespace {

// Index 0 is n = 2.
constexpr std::array<double, 24> kD2 = {1.128, 1.693, 2.059, 2.326, 2.534, 2.704, 2.847, 2.970,
                                        3.078, 3.173, 3.258, 3.336, 3.407, 3.472, 3.532, 3.588,
                                        3.640, 3.689, 3.735, 3.778, 3.819, 3.858, 3.895, 3.931};
constexpr std::array<double, 24> kD3 = {0.853, 0.888, 0.880, 0.864, 0.848, 0.833, 0.820, 0.808,
                                        0.797, 0.787, 0.778, 0.770, 0.763, 0.756, 0.750, 0.744,
                                        0.739, 0.734, 0.729, 0.724, 0.720, 0.716, 0.712, 0.708};

double fromTable(const std::array<double, 24> &table, int n)
{
    if (n < 2 || n > ChartConstants::kLargestRangeSubgroup)
        return 0;
    return table[std::size_t(n - 2)];
}

} // namespace

double ChartConstants::d2(int n)
{
    return fromTable(kD2, n);
}

double ChartConstants::d3(int n)
{
    return fromTable(kD3, n);
}

double ChartConstants::c4(int n)
{
    if (n < 2)
        return 0;
    // c4 = sqrt(2 / (n - 1)) * Γ(n / 2) / Γ((n - 1) / 2), through the logarithm of Γ so
    // that large subgroups do not overflow.
    const double lg = std::lgamma(n / 2.0) - std::lgamma((n - 1) / 2.0);
    return std::sqrt(2.0 / (n - 1)) * std::exp(lg);
}

} // namespace spc

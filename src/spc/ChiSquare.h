#pragma once

namespace spc {

// The chi-square distribution, as far as confidence intervals of capability need it.
class ChiSquare
{
public:
    // P(X <= x) for `degrees` degrees of freedom.
    static double cdf(double x, double degrees);
    // The x below which the fraction p lies (0 < p < 1).
    static double quantile(double p, double degrees);
};

} // namespace spc

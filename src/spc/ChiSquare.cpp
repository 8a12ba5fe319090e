#include "ChiSquare.h"

#include <cmath>

namespace spc {

namespace {

constexpr int kIterations = 500;
constexpr double kTolerance = 1e-15;

// The regularized lower incomplete gamma function P(a, x): by its power series where
// that converges fast (x < a + 1), otherwise as one minus the continued fraction of
// the upper part.
double lowerGamma(double a, double x)
{
    if (x <= 0)
        return 0;
    const double front = std::exp(a * std::log(x) - x - std::lgamma(a));
    if (x < a + 1) {
        double term = 1 / a;
        double sum = term;
        for (int n = 1; n < kIterations && std::abs(term) > std::abs(sum) * kTolerance; ++n) {
            term *= x / (a + n);
            sum += term;
        }
        return sum * front;
    }
    const double tiny = 1e-300;
    double b = x + 1 - a;
    double c = 1 / tiny;
    double d = 1 / b;
    double h = d;
    for (int i = 1; i < kIterations; ++i) {
        const double an = -i * (i - a);
        b += 2;
        d = an * d + b;
        d = std::abs(d) < tiny ? tiny : d;
        c = b + an / c;
        c = std::abs(c) < tiny ? tiny : c;
        d = 1 / d;
        const double step = d * c;
        h *= step;
        if (std::abs(step - 1) < kTolerance)
            break;
    }
    return 1 - front * h;
}

} // namespace

double ChiSquare::cdf(double x, double degrees)
{
    return lowerGamma(degrees / 2, x / 2);
}

double ChiSquare::quantile(double p, double degrees)
{
    double low = 0;
    double high = degrees + 10 * std::sqrt(2 * degrees) + 10;
    while (cdf(high, degrees) < p)
        high *= 2;
    // Bisection to the last bit: the distribution function rises steadily.
    for (int i = 0; i < 200 && high - low > 1e-12 * high; ++i) {
        const double middle = (low + high) / 2;
        (cdf(middle, degrees) < p ? low : high) = middle;
    }
    return (low + high) / 2;
}

} // namespace spc

#include "SubgroupValues.h"

#include <algorithm>
#include <cmath>

namespace spc {

SubgroupFigures figuresOf(const std::vector<double> &values)
{
    SubgroupFigures figures;
    figures.n = int(values.size());
    if (values.empty())
        return figures;
    double sum = 0;
    for (double v : values)
        sum += v;
    figures.mean = sum / figures.n;
    if (figures.n < 2)
        return figures;
    const auto [low, high] = std::minmax_element(values.begin(), values.end());
    figures.range = *high - *low;
    double squares = 0;
    for (double v : values)
        squares += (v - figures.mean) * (v - figures.mean);
    figures.stddev = std::sqrt(squares / (figures.n - 1));
    return figures;
}

} // namespace spc

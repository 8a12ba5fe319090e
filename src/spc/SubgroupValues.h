#pragma once

#include <QDateTime>

#include <optional>
#include <vector>

namespace spc {

// The measured values of one characteristic in one stored subgroup. A quiet sampling
// period stores fewer values than the configured subgroup size, so n varies.
struct SubgroupValues
{
    qint64 subgroupId = 0;
    QDateTime dateTime;
    std::vector<double> values;
};

// What a subgroup says by itself: its size, mean, range and sample standard deviation
// (n - 1); range and standard deviation need at least two values.
struct SubgroupFigures
{
    int n = 0;
    double mean = 0;
    std::optional<double> range;
    std::optional<double> stddev;
};

SubgroupFigures figuresOf(const std::vector<double> &values);

} // namespace spc

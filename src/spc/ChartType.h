#pragma once

#include <QString>

#include <optional>

namespace spc {

// The pair of charts that follow a characteristic: the subgroup means over their ranges,
// the means over their standard deviations, or individual values over their moving
// ranges.
enum class ChartType { XbarR, XbarS, IndividualsMR };

// "xbar-r", "xbar-s", "i-mr": the spelling of the command line and the database.
QString chartTypeName(ChartType type);
std::optional<ChartType> chartTypeFromName(const QString &name);

// The chart that suits subgroups of this many values: individuals for one, ranges up to
// ten, standard deviations above.
ChartType chartTypeForSize(int n);

} // namespace spc

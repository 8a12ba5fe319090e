#pragma once

#include "Capability.h"
#include "ControlChart.h"
#include "StoredSubgroups.h"

#include <QDateTime>

#include <vector>

namespace qlaDatabase6 {
class Database;
}

namespace spc {

// Everything the control-chart window shows of one characteristic in a window of time:
// the chart (against the frozen limits when there are any, otherwise against limits
// estimated from the whole window), the capability figures and every value for the
// histogram against the specification limits.
struct ChartSnapshot
{
    Characteristic characteristic;
    Chart chart;
    bool frozenLimits = false;
    CapabilityFigures capability;
    SpecificationLimits specification;
    std::vector<double> values;
    int subgroups = 0;

    // Reads the subgroups taken from `since` to `until` (either may be invalid: open).
    static ChartSnapshot load(qlaDatabase6::Database &database,
                              const Characteristic &characteristic, const QDateTime &since,
                              const QDateTime &until, const RuleSet &rules);

    // Freezes the limits estimated from the subgroups taken from `from` to `until`, the
    // stretch an engineer has judged to be in control. Returns the chart they came from;
    // its status tells when there were not enough subgroups, and nothing is frozen then.
    static Chart freeze(qlaDatabase6::Database &database, const Characteristic &characteristic,
                        const QDateTime &from, const QDateTime &until, const QDateTime &frozenAt);
};

} // namespace spc

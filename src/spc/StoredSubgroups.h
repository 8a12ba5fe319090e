#pragma once

#include "Capability.h"
#include "ControlChart.h"
#include "SubgroupValues.h"

#include "platform/spc/ControlLimitRecord.h"

#include <QDateTime>
#include <QString>

#include <optional>
#include <vector>

namespace qlaDatabase6 {
class Database;
}

namespace spc {

// One characteristic as the SPC database knows it: a test of a part on a process.
struct Characteristic
{
    QString part;
    QString process;
    QString test;
};

// What the analysis reads from and writes to the SPC database.
class StoredSubgroups
{
public:
    // The measured values of the characteristic in the subgroups taken from `since` to
    // `until` (either may be invalid: open), oldest first. Subgroups without a value of
    // the test are left out.
    static std::vector<SubgroupValues> load(qlaDatabase6::Database &database,
                                            const Characteristic &characteristic,
                                            const QDateTime &since = {},
                                            const QDateTime &until = {});

    // The part's specification limits of the test; none when either is unknown.
    static SpecificationLimits specificationLimits(qlaDatabase6::Database &database,
                                                   const Characteristic &characteristic);

    // The frozen limits of the characteristic, if any.
    static std::optional<ControlLimits> frozenLimits(qlaDatabase6::Database &database,
                                                     const Characteristic &characteristic);

    // The record that freezes a chart's limits and baseline.
    static qlaDatabase6::ControlLimitRecord recordOf(const Characteristic &characteristic,
                                                     const Chart &chart, const QDateTime &frozenAt);
    static std::optional<ControlLimits> limitsOf(const qlaDatabase6::ControlLimitRecord &record);
};

} // namespace spc

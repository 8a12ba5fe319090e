#pragma once

#include "monitor/SamplingSeam.h"
#include "spc/ControlChart.h"
#include "spc/RuleSet.h"

#include <QHash>
#include <QList>
#include <QString>

#include <optional>
#include <vector>

namespace qlaDatabase6 {
class Database;
class Subgroup;
} // namespace qlaDatabase6

// Watches the subgroups a monitor completes against the control limits frozen for its
// part, process and each measured characteristic. The limits of a characteristic are
// read from the SPC database once per collection; the points it is checked against are
// the ones this collection completed, kept in memory, so the check goes on when storing
// a subgroup fails.
class LiveRuleCheck
{
public:
    // The longest pattern a rule looks at: fifteen points within 1σ.
    static constexpr std::size_t kPointsKept = 15;

    explicit LiveRuleCheck(spc::RuleSet rules = spc::RuleSet::defaults());

    // Forgets limits and points: a new collection may be of another part or process.
    void reset();

    // Checks every measured item of a completed subgroup that has frozen limits and adds
    // the rules it broke to `violations`. A characteristic whose limits cannot be read
    // now is tried again with the next subgroup; the first such failure is thrown after
    // the others have been checked.
    void check(const qlaDatabase6::Subgroup &subgroup, qlaDatabase6::Database &database,
               QList<RuleViolation> &violations);

private:
    struct Track
    {
        std::optional<spc::ControlLimits> limits;
        std::vector<spc::ChartPoint> points;
    };

    spc::RuleSet m_rules;
    QHash<QString, Track> m_tracks;
};

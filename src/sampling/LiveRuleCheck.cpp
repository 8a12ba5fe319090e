#include "LiveRuleCheck.h"

#include "platform/ProgramError.h"
#include "platform/spc/Database.h"
#include "spc/RunRules.h"
#include "spc/StoredSubgroups.h"

using qlaDatabase6::TestItem;

LiveRuleCheck::LiveRuleCheck(spc::RuleSet rules)
    : m_rules(rules)
{}

void LiveRuleCheck::reset()
{
    m_tracks.clear();
}

void LiveRuleCheck::check(const qlaDatabase6::Subgroup &subgroup, qlaDatabase6::Database &database,
                          QList<RuleViolation> &violations)
{
    const qlaDatabase6::SubgroupHeader &header = subgroup.header();
    std::optional<ProgramError> failure;
    for (const TestItem &item : subgroup.testItems()) {
        if (item.kind != TestItem::kMeasuredValue || item.values.isEmpty())
            continue;
        auto track = m_tracks.find(item.name);
        if (track == m_tracks.end()) {
            try {
                const std::optional<spc::ControlLimits> limits = spc::StoredSubgroups::frozenLimits(
                    database, {header.part, header.process, item.name});
                track = m_tracks.insert(item.name, Track{limits, {}});
            } catch (const ProgramError &error) {
                if (!failure)
                    failure = error;
                continue;
            }
        }
        if (!track->limits)
            continue;
        spc::SubgroupValues values{0, header.dateTime, {}};
        for (const qlaDatabase6::SubgroupValue &value : item.values)
            values.values.push_back(value.value);
        std::vector<spc::ChartPoint> &points = track->points;
        const std::optional<double> previous =
            points.empty() ? std::nullopt : std::optional<double>(points.back().x);
        points.push_back(spc::ControlChart::point(values, *track->limits, previous));
        if (points.size() > kPointsKept)
            points.erase(points.begin());
        const spc::ChartPoint &point = points.back();
        for (int rule : spc::RunRules::brokenAt(points, points.size() - 1, m_rules).rules())
            violations.append({item.name, rule, false, header.dateTime, point.x, point.xCentre,
                               point.xLower, point.xUpper});
        if (point.spreadBeyondLimits)
            violations.append({item.name, 1, true, header.dateTime, *point.spread,
                               point.spreadCentre, point.spreadLower, point.spreadUpper});
    }
    if (failure)
        throw *failure;
}

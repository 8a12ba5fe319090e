#include "ChartSnapshot.h"

#include "platform/spc/Database.h"

namespace spc {

ChartSnapshot ChartSnapshot::load(qlaDatabase6::Database &database,
                                  const Characteristic &characteristic, const QDateTime &since,
                                  const QDateTime &until, const RuleSet &rules)
{
    ChartSnapshot snapshot;
    snapshot.characteristic = characteristic;
    const std::vector<SubgroupValues> subgroups =
        StoredSubgroups::load(database, characteristic, since, until);
    snapshot.subgroups = int(subgroups.size());
    snapshot.specification = StoredSubgroups::specificationLimits(database, characteristic);

    ChartRequest request;
    request.rules = rules;
    if (const std::optional<ControlLimits> frozen =
            StoredSubgroups::frozenLimits(database, characteristic)) {
        request.type = frozen->type;
        request.baseline.kind = ChartBaseline::Kind::Frozen;
        request.baseline.frozen = *frozen;
        snapshot.frozenLimits = true;
    }
    snapshot.chart = ControlChart::build(subgroups, request);
    snapshot.capability = Capability::of(subgroups, snapshot.chart.type, snapshot.specification);
    for (const SubgroupValues &subgroup : subgroups)
        snapshot.values.insert(snapshot.values.end(), subgroup.values.begin(),
                               subgroup.values.end());
    return snapshot;
}

Chart ChartSnapshot::freeze(qlaDatabase6::Database &database, const Characteristic &characteristic,
                            const QDateTime &from, const QDateTime &until,
                            const QDateTime &frozenAt)
{
    const std::vector<SubgroupValues> subgroups =
        StoredSubgroups::load(database, characteristic, from, until);
    ChartRequest request;
    Chart chart = ControlChart::build(subgroups, request);
    if (chart.status == ChartStatus::Ready)
        database.freezeControlLimits(StoredSubgroups::recordOf(characteristic, chart, frozenAt));
    return chart;
}

} // namespace spc

#include "StoredSubgroups.h"

#include "platform/spc/Database.h"

namespace spc {

using qlaDatabase6::ControlLimitRecord;

std::vector<SubgroupValues> StoredSubgroups::load(qlaDatabase6::Database &database,
                                                  const Characteristic &characteristic,
                                                  const QDateTime &since, const QDateTime &until)
{
    qlaDatabase6::SubgroupFilter filter;
    filter.part = characteristic.part;
    filter.process = characteristic.process;
    filter.testItem = characteristic.test;
    filter.since = since;
    filter.until = until;
    std::vector<SubgroupValues> subgroups;
    // Rows come by subgroup, then sample number.
    for (const qlaDatabase6::StoredValue &row : database.subgroupValues(filter)) {
        if (row.kind != qlaDatabase6::TestItem::kMeasuredValue)
            continue;
        if (subgroups.empty() || subgroups.back().subgroupId != row.subgroupId)
            subgroups.push_back({row.subgroupId, row.header.dateTime, {}});
        subgroups.back().values.push_back(row.value);
    }
    return subgroups;
}

SpecificationLimits StoredSubgroups::specificationLimits(qlaDatabase6::Database &database,
                                                         const Characteristic &characteristic)
{
    qlaDatabase6::Part part;
    part.setName(characteristic.part);
    qlaDatabase6::Test test;
    test.setName(characteristic.test);
    SpecificationLimits limits;
    if (!part.load(database) || !test.load(database))
        return limits;
    qlaDatabase6::SpecLimit stored;
    stored.setPartId(part.id());
    stored.setTestId(test.id());
    if (!stored.load(database))
        return limits;
    if (stored.limitFlags() & qlaDatabase6::SpecLimit::kLowerSpecLimit)
        limits.lower = stored.lowerSpecLimit();
    if (stored.limitFlags() & qlaDatabase6::SpecLimit::kUpperSpecLimit)
        limits.upper = stored.upperSpecLimit();
    return limits;
}

std::optional<ControlLimits> StoredSubgroups::frozenLimits(qlaDatabase6::Database &database,
                                                           const Characteristic &characteristic)
{
    return limitsOf(
        database.controlLimits(characteristic.part, characteristic.process, characteristic.test));
}

ControlLimitRecord StoredSubgroups::recordOf(const Characteristic &characteristic,
                                             const Chart &chart, const QDateTime &frozenAt)
{
    ControlLimitRecord record;
    record.part = characteristic.part;
    record.process = characteristic.process;
    record.test = characteristic.test;
    record.chartType = chartTypeName(chart.type);
    record.centre = chart.limits.centre;
    record.sigma = chart.limits.sigma;
    record.baselineFrom = chart.baselineFrom;
    record.baselineUntil = chart.baselineUntil;
    record.baselineSubgroups = chart.baselineSubgroups;
    record.frozenAt = frozenAt;
    return record;
}

std::optional<ControlLimits> StoredSubgroups::limitsOf(const ControlLimitRecord &record)
{
    const std::optional<ChartType> type = chartTypeFromName(record.chartType);
    if (!type || !(record.sigma > 0))
        return std::nullopt;
    return ControlLimits{*type, record.centre, record.sigma};
}

} // namespace spc

#include "SubgroupRecord.h"

#include "platform/ProgramError.h"
#include "protocol/CorvaneFUN26.h"

#include <limits>

namespace {

void increment(qint32 &counter, const char *procedure)
{
    if (counter == std::numeric_limits<qint32>::max())
        throw ProgramError::overflow(QLatin1String(procedure));
    ++counter;
}

constexpr std::array<AlarmGroup, SubgroupRecord::kGroupCount> kGroups = {
    AlarmGroup::RejectPart, AlarmGroup::SuspectPart,      AlarmGroup::NoCycle,
    AlarmGroup::Overload,   AlarmGroup::EquipmentFailure, AlarmGroup::CycleModified,
    AlarmGroup::Note};

} // namespace

void SubgroupRecord::addWeld()
{
    increment(WeldCount, "SamplingProperties.AddToSample");
}

void SubgroupRecord::AccumulateErrorCodes(const CorvaneFUN26 &record)
{
    for (qint32 bit = 0; bit < kBitCount; ++bit) {
        const qint32 mask = CorvaneUSWSupport::ConvertBitToLong(bit);
        for (const AlarmGroup group : kGroups) {
            if (alarmWord(record, group) & mask)
                increment(counters(group)[std::size_t(bit)],
                          "SamplingProperties.AccumulateErrorCodes");
        }
    }
}

void SubgroupRecord::clear()
{
    WeldCount = 0;
    for (AlarmCounters &group : m_counters)
        group.fill(0);
}

#pragma once

#include "protocol/AlarmCodes.h"

#include <QtGlobal>

#include <array>

struct CorvaneFUN26;

// What one sampling period has gathered so far: the number of welds and, for each of
// the seven alarm groups, how many welds carried each of its 32 alarm bits. Counters
// are signed 32-bit like every counter of the program; one that would pass
// 2,147,483,647 is an overflow error, never a wrap.
class SubgroupRecord
{
public:
    static constexpr int kGroupCount = 7;
    static constexpr int kBitCount = 32;
    using AlarmCounters = std::array<qint32, kBitCount>;

    qint32 WeldCount = 0;

    // The counters of a group.
    const AlarmCounters &counters(AlarmGroup group) const { return m_counters[std::size_t(group)]; }
    AlarmCounters &counters(AlarmGroup group) { return m_counters[std::size_t(group)]; }

    // One more weld in the period.
    void addWeld();
    // Counts every alarm bit that the record carries, group by group.
    void AccumulateErrorCodes(const CorvaneFUN26 &record);
    // Back to an empty period: the weld count and every alarm counter 0.
    void clear();

private:
    // Indexed by AlarmGroup: Reject Part, Suspect Part, No Cycle, Overload, Equipment
    // Failure, Cycle Modified, Note.
    std::array<AlarmCounters, kGroupCount> m_counters{};
};

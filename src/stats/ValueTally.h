#pragma once

#include <QtGlobal>

#include <span>
#include <vector>

// How often each value occurred, for the oldest values of a long run that are no longer
// kept one by one. Every distinct value has its own entry while there are at most
// kMaxEntries of them: a power supply reports whole steps, so a characteristic seldom
// takes more, and the summary's bins and counts stay exact. Past that, neighbouring
// entries are merged pairwise (at their count-weighted mean), so the tally never grows
// beyond its fixed size, at a coarser resolution.
struct ValueCount
{
    double value = 0;
    qint64 count = 0;

    friend bool operator==(const ValueCount &, const ValueCount &) = default;
};

class ValueTally
{
public:
    static constexpr int kMaxEntries = 4096;

    // Adds values, in any order.
    void add(std::span<const double> values);
    void clear();

    qint64 count() const { return m_count; }
    // The entries in ascending order of value.
    std::span<const ValueCount> entries() const { return m_entries; }
    // True once entries had to be merged: bins near an entry may then be off by its width.
    bool merged() const { return m_merged; }
    qsizetype storedBytes() const { return qsizetype(m_entries.capacity() * sizeof(ValueCount)); }

private:
    void mergeNeighbours();

    std::vector<ValueCount> m_entries;
    qint64 m_count = 0;
    bool m_merged = false;
};

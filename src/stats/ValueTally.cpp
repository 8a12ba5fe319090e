#include "ValueTally.h"

#include <algorithm>

void ValueTally::add(std::span<const double> values)
{
    std::vector<double> sorted(values.begin(), values.end());
    std::sort(sorted.begin(), sorted.end());
    std::vector<ValueCount> incoming;
    for (const double value : sorted) {
        if (!incoming.empty() && incoming.back().value == value)
            ++incoming.back().count;
        else
            incoming.push_back({value, 1});
    }

    std::vector<ValueCount> joined;
    joined.reserve(m_entries.size() + incoming.size());
    auto older = m_entries.begin();
    auto newer = incoming.begin();
    while (older != m_entries.end() || newer != incoming.end()) {
        const bool takeOlder =
            newer == incoming.end() || (older != m_entries.end() && older->value <= newer->value);
        const ValueCount next = takeOlder ? *older++ : *newer++;
        if (!joined.empty() && joined.back().value == next.value)
            joined.back().count += next.count;
        else
            joined.push_back(next);
    }
    m_entries = std::move(joined);
    m_count += qint64(values.size());
    while (m_entries.size() > size_t(kMaxEntries))
        mergeNeighbours();
}

void ValueTally::clear()
{
    std::vector<ValueCount>().swap(m_entries);
    m_count = 0;
    m_merged = false;
}

void ValueTally::mergeNeighbours()
{
    std::vector<ValueCount> halved;
    halved.reserve(m_entries.size() / 2 + 1);
    for (size_t i = 0; i < m_entries.size(); i += 2) {
        if (i + 1 == m_entries.size()) {
            halved.push_back(m_entries[i]);
            break;
        }
        const ValueCount &a = m_entries[i];
        const ValueCount &b = m_entries[i + 1];
        const qint64 count = a.count + b.count;
        const double mean = a.value + (b.value - a.value) * (double(b.count) / double(count));
        halved.push_back({mean, count});
    }
    m_entries = std::move(halved);
    m_merged = true;
}

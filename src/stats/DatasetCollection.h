#pragma once

#include "Dataset.h"

#include <QHash>
#include <QString>

#include <memory>
#include <vector>

// A monitor's datasets, one per characteristic, kept in the order they were added and
// found by key ("KEY:" and the characteristic's number). The collection owns them.
class DatasetCollection
{
public:
    using Container = std::vector<std::unique_ptr<Dataset>>;

    DatasetCollection() = default;
    DatasetCollection(const DatasetCollection &) = delete;
    DatasetCollection &operator=(const DatasetCollection &) = delete;
    DatasetCollection(DatasetCollection &&) = default;
    DatasetCollection &operator=(DatasetCollection &&) = default;

    // The key of a characteristic number: "KEY:" and the number in decimal.
    static QString keyFor(qint32 id);

    // Adds a dataset at the end; a key already present fails with "Key already exists".
    Dataset &Add(std::unique_ptr<Dataset> dataset, const QString &key);

    // The dataset under key; a missing key fails with "Subscript out of range".
    Dataset &Item(const QString &key);
    const Dataset &Item(const QString &key) const;
    // The dataset under key, or nullptr.
    Dataset *find(const QString &key);
    const Dataset *find(const QString &key) const;
    bool contains(const QString &key) const { return m_index.contains(key); }

    qsizetype Count() const { return qsizetype(m_items.size()); }
    bool isEmpty() const { return m_items.empty(); }
    // The dataset at a 0-based position in collection order.
    Dataset &at(qsizetype position) { return *m_items.at(std::size_t(position)); }
    const Dataset &at(qsizetype position) const { return *m_items.at(std::size_t(position)); }

    void clear();

    // Iteration in collection order, over the owning pointers.
    Container::const_iterator begin() const { return m_items.begin(); }
    Container::const_iterator end() const { return m_items.end(); }

private:
    Container m_items;
    QHash<QString, qsizetype> m_index;
};

#include "DatasetCollection.h"

#include "platform/ProgramError.h"

QString DatasetCollection::keyFor(qint32 id)
{
    return QStringLiteral("KEY:") + QString::number(id);
}

Dataset &DatasetCollection::Add(std::unique_ptr<Dataset> dataset, const QString &key)
{
    if (m_index.contains(key))
        throw ProgramError::raised(QStringLiteral("Key already exists"),
                                   QStringLiteral("DatasetCollection.Add"));
    m_index.insert(key, qsizetype(m_items.size()));
    m_items.push_back(std::move(dataset));
    return *m_items.back();
}

Dataset &DatasetCollection::Item(const QString &key)
{
    if (Dataset *dataset = find(key))
        return *dataset;
    throw ProgramError::subscriptOutOfRange(QStringLiteral("DatasetCollection.Item"));
}

const Dataset &DatasetCollection::Item(const QString &key) const
{
    return const_cast<DatasetCollection *>(this)->Item(key);
}

Dataset *DatasetCollection::find(const QString &key)
{
    const auto found = m_index.constFind(key);
    return found == m_index.constEnd() ? nullptr : m_items[std::size_t(found.value())].get();
}

const Dataset *DatasetCollection::find(const QString &key) const
{
    return const_cast<DatasetCollection *>(this)->find(key);
}

void DatasetCollection::clear()
{
    m_items.clear();
    m_index.clear();
}

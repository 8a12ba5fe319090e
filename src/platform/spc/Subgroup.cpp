#include "Subgroup.h"

#include "Database.h"

#include "platform/ProgramError.h"

namespace qlaDatabase6 {

void Subgroup::setHeader(const SubgroupHeader &header)
{
    m_header = header;
    m_testItems.clear();
}

void Subgroup::AddTestItem(const QString &name, int kind)
{
    m_testItems.append(TestItem{name, kind, {}});
}

void Subgroup::addValue(qint32 sampleNumber, double value, const QString &text)
{
    if (m_testItems.isEmpty())
        throw ProgramError::raised(QStringLiteral("No test item to add the value to"),
                                   QStringLiteral("Subgroup.addValue"));
    m_testItems.last().values.append(SubgroupValue{sampleNumber, value, text});
}

qsizetype Subgroup::storedValueCount() const
{
    qsizetype count = 0;
    for (const TestItem &item : m_testItems)
        count += item.values.size();
    return count;
}

qint64 Subgroup::store(Database &database) const
{
    return database.storeSubgroup(*this);
}

} // namespace qlaDatabase6

#include "SubgroupImport.h"

#include "platform/spc/Database.h"

#include <QSet>

using qlaDatabase6::Database;
using qlaDatabase6::Record;
using qlaDatabase6::RecordKind;

namespace {

class RecordMaker
{
public:
    explicit RecordMaker(Database &database)
        : m_database(database)
    {}

    // Creates the record unless it exists; parts and processes go into their group,
    // which is created first.
    void ensure(RecordKind kind, const QString &name, const QString &group = {})
    {
        const QString key = QString::number(int(kind)) + u'/' + name;
        if (name.isEmpty() || m_known.contains(key))
            return;
        Record record(kind);
        record.setName(name);
        if (!record.load(m_database)) {
            if (!group.isEmpty())
                ensure(RecordKind::Group, group);
            m_database.createRecord(kind, name, group);
        }
        m_known.insert(key);
    }

private:
    Database &m_database;
    QSet<QString> m_known;
};

} // namespace

SubgroupImport::Result SubgroupImport::store(Database &database,
                                             const QList<qlaDatabase6::Subgroup> &subgroups)
{
    Result result;
    RecordMaker records(database);
    for (const qlaDatabase6::Subgroup &subgroup : subgroups) {
        const qlaDatabase6::SubgroupHeader &header = subgroup.header();
        if (database.hasSubgroup(header)) {
            ++result.skipped;
            continue;
        }
        records.ensure(RecordKind::Part, header.part, header.partGroup);
        records.ensure(RecordKind::Process, header.process, header.processGroup);
        for (const qlaDatabase6::TestItem &item : subgroup.testItems())
            if (item.kind == qlaDatabase6::TestItem::kMeasuredValue)
                records.ensure(RecordKind::Test, item.name);
        subgroup.store(database);
        ++result.stored;
    }
    return result;
}

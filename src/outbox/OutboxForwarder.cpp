#include "OutboxForwarder.h"

#include "SubgroupOutbox.h"

#include "platform/ProgramError.h"
#include "platform/spc/Database.h"

namespace {

using qlaDatabase6::Record;

// The name of a record's group, "Corvane" when it has none or is unknown, as when the
// collection starts with the database there.
QString groupName(qlaDatabase6::Database &database, Record record, const QString &name)
{
    record.setName(name);
    record.setLookup(Record::kLookupByName);
    if (database.loadRecord(record) && !record.groupName().isEmpty())
        return record.groupName();
    return QStringLiteral("Corvane");
}

void completeGroups(qlaDatabase6::Database &database, qlaDatabase6::Subgroup &subgroup)
{
    qlaDatabase6::SubgroupHeader header = subgroup.header();
    if (!header.partGroup.isEmpty() && !header.processGroup.isEmpty())
        return;
    if (header.partGroup.isEmpty())
        header.partGroup = groupName(database, qlaDatabase6::Part(), header.part);
    if (header.processGroup.isEmpty())
        header.processGroup = groupName(database, qlaDatabase6::Process(), header.process);
    subgroup.amendHeader(header);
}

} // namespace

void storeSubgroup(qlaDatabase6::Database &database, qlaDatabase6::Subgroup &subgroup)
{
    completeGroups(database, subgroup);
    database.storeSubgroup(subgroup);
}

ForwardResult forwardOutbox(SubgroupOutbox &outbox, qlaDatabase6::Database &database)
{
    ForwardResult result;
    const QString source = database.dataSourceName();
    if (!database.isConnected() && !database.openConnection()) {
        result.failure = database.lastErrorText();
        result.remaining = outbox.count(source);
        return result;
    }
    // A few at a time, so that the file is never read whole into memory.
    for (QList<OutboxEntry> batch = outbox.entries(source, 50); !batch.isEmpty();
         batch = outbox.entries(source, 50)) {
        for (OutboxEntry &entry : batch) {
            try {
                storeSubgroup(database, entry.subgroup);
            } catch (const ProgramError &error) {
                result.failure = error.description();
                result.remaining = outbox.count(source);
                return result;
            }
            outbox.remove(entry.id);
            ++result.forwarded;
        }
    }
    return result;
}

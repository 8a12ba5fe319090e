#include "OutboxCommand.h"

#include "outbox/OutboxForwarder.h"
#include "outbox/SubgroupOutbox.h"
#include "platform/spc/SqlDatabase.h"

namespace {

void list(SubgroupOutbox &outbox, const QString &source, QTextStream &out)
{
    const QList<OutboxEntry> entries = outbox.entries(source);
    for (const OutboxEntry &entry : entries) {
        const qlaDatabase6::SubgroupHeader &header = entry.subgroup.header();
        out << entry.id << '\t' << header.dateTime.toString(Qt::ISODateWithMs) << '\t'
            << header.part << '\t' << header.process << '\t' << header.valueCount << '\t'
            << entry.dataSourceName << '\t' << header.key << '\n';
    }
    out << entries.size() << " subgroup(s) waiting in " << outbox.path() << '\n';
}

int flush(SubgroupOutbox &outbox, const QString &source, QTextStream &out)
{
    QStringList sources;
    for (const OutboxEntry &entry : outbox.entries(source)) {
        if (!sources.contains(entry.dataSourceName))
            sources << entry.dataSourceName;
    }
    int status = 0;
    for (const QString &name : sources) {
        qlaDatabase6::SqlDatabase database;
        database.setDataSourceName(name);
        const ForwardResult result = forwardOutbox(outbox, database);
        out << name << ": " << result.forwarded << " forwarded, " << result.remaining << " waiting";
        if (!result.failure.isEmpty()) {
            out << " (" << result.failure.simplified() << ')';
            status = 1;
        }
        out << '\n';
    }
    return status;
}

} // namespace

int runOutboxCommand(const SpcCommand &command, QTextStream &out)
{
    SubgroupOutbox outbox(command.outboxPath);
    const QString source = command.defaultDsn ? QString() : command.dsn;
    if (command.discard) {
        out << outbox.discard(source) << " subgroup(s) discarded\n";
        return 0;
    }
    if (command.flush)
        return flush(outbox, source, out);
    list(outbox, source, out);
    return 0;
}

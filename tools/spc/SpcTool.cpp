#include "SpcTool.h"

#include "CsvWriter.h"

#include "platform/ProgramError.h"
#include "platform/spc/Database.h"

#include <QLocale>

using qlaDatabase6::Record;
using qlaDatabase6::RecordKind;
using qlaDatabase6::SpecLimit;
using qlaDatabase6::StoredValue;

namespace {

// A report line without CSV must not be broken by the texts in it.
QString tabSafe(QString text)
{
    for (QChar &c : text)
        if (c == u'\t' || c == u'\n' || c == u'\r')
            c = u' ';
    return text;
}

QString timeText(const QDateTime &time)
{
    return time.toString(time.time().msec() == 0 ? Qt::ISODate : Qt::ISODateWithMs);
}

} // namespace

SpcTool::SpcTool(qlaDatabase6::Database &database, QTextStream &out)
    : m_database(database)
    , m_out(out)
{}

QString SpcTool::numberText(double value)
{
    return QLocale::c().toString(value, 'g', QLocale::FloatingPointShortest);
}

void SpcTool::run(const SpcCommand &command)
{
    switch (command.action) {
    case SpcCommand::Action::Init:
        m_out << "schema version " << m_database.schemaVersion() << '\n';
        break;
    case SpcCommand::Action::AddGroup:
        addRecord(RecordKind::Group, command);
        break;
    case SpcCommand::Action::AddPart:
        addRecord(RecordKind::Part, command);
        break;
    case SpcCommand::Action::AddProcess:
        addRecord(RecordKind::Process, command);
        break;
    case SpcCommand::Action::AddTest:
        addRecord(RecordKind::Test, command);
        break;
    case SpcCommand::Action::SetLimits:
        setLimits(command);
        break;
    case SpcCommand::Action::List:
        list(command.names.constFirst());
        break;
    case SpcCommand::Action::Subgroups:
        subgroups(command);
        break;
    case SpcCommand::Action::Outbox: // runs on the outbox file, not on a database
    case SpcCommand::Action::Help:
        break;
    }
}

void SpcTool::addRecord(RecordKind kind, const SpcCommand &command)
{
    const Record record = m_database.createRecord(kind, command.names.constFirst(), command.group);
    m_out << "added " << qlaDatabase6::recordKindText(kind) << " \"" << record.name() << "\" (id "
          << record.id() << ")\n";
}

Record SpcTool::existing(RecordKind kind, const QString &name)
{
    Record record(kind);
    record.setName(name);
    if (!record.load(m_database))
        throw ProgramError::raised(
            QStringLiteral("unknown %1 \"%2\"").arg(qlaDatabase6::recordKindText(kind), name),
            QStringLiteral("SpcTool.existing"));
    return record;
}

void SpcTool::setLimits(const SpcCommand &command)
{
    const Record part = existing(RecordKind::Part, command.names.at(0));
    const Record test = existing(RecordKind::Test, command.names.at(1));
    if (command.clear) {
        const bool removed = m_database.clearSpecLimit(part.id(), test.id());
        m_out << (removed ? "cleared" : "there were no") << " limits of \"" << part.name()
              << "\" for \"" << test.name() << "\"\n";
        return;
    }
    SpecLimit limit;
    limit.setPartId(part.id());
    limit.setTestId(test.id());
    if (command.upperSpecLimit)
        limit.setUpperSpecLimit(*command.upperSpecLimit);
    if (command.lowerSpecLimit)
        limit.setLowerSpecLimit(*command.lowerSpecLimit);
    if (command.upperWarningLimit)
        limit.setUpperWarningLimit(*command.upperWarningLimit);
    if (command.lowerWarningLimit)
        limit.setLowerWarningLimit(*command.lowerWarningLimit);
    m_database.setSpecLimit(limit);
    m_out << "set limits of \"" << part.name() << "\" for \"" << test.name() << "\" (flags "
          << limit.limitFlags() << ")\n";
}

void SpcTool::list(const QString &what)
{
    if (what == QLatin1String("limits")) {
        listLimits();
        return;
    }
    RecordKind kind = RecordKind::Group;
    if (what == QLatin1String("parts"))
        kind = RecordKind::Part;
    else if (what == QLatin1String("processes"))
        kind = RecordKind::Process;
    else if (what == QLatin1String("tests"))
        kind = RecordKind::Test;
    const bool grouped = kind == RecordKind::Part || kind == RecordKind::Process;
    for (const Record &record : m_database.listRecords(kind)) {
        m_out << tabSafe(record.name());
        if (grouped)
            m_out << '\t' << tabSafe(record.groupName());
        m_out << '\n';
    }
}

void SpcTool::listLimits()
{
    // One line per part and test: the flags word, then each limit, empty when absent.
    const auto limitText = [](const SpecLimit &limit, int bit, double value) {
        return (limit.limitFlags() & bit) ? numberText(value) : QString();
    };
    for (const SpecLimit &limit : m_database.listSpecLimits()) {
        m_out << tabSafe(limit.partName()) << '\t' << tabSafe(limit.testName()) << '\t'
              << limit.limitFlags() << '\t'
              << limitText(limit, SpecLimit::kUpperSpecLimit, limit.upperSpecLimit()) << '\t'
              << limitText(limit, SpecLimit::kUpperWarningLimit, limit.upperWarningLimit()) << '\t'
              << limitText(limit, SpecLimit::kLowerWarningLimit, limit.lowerWarningLimit()) << '\t'
              << limitText(limit, SpecLimit::kLowerSpecLimit, limit.lowerSpecLimit()) << '\n';
    }
}

void SpcTool::subgroups(const SpcCommand &command)
{
    const QStringList heading = {
        QStringLiteral("subgroup"),   QStringLiteral("date_time"),     QStringLiteral("part_group"),
        QStringLiteral("part"),       QStringLiteral("process_group"), QStringLiteral("process"),
        QStringLiteral("source_tag"), QStringLiteral("value_count"),   QStringLiteral("test_item"),
        QStringLiteral("kind"),       QStringLiteral("sample_number"), QStringLiteral("value"),
        QStringLiteral("text")};
    const auto write = [&](const QStringList &fields) {
        if (command.csv) {
            m_out << CsvWriter::row(fields);
            return;
        }
        QStringList safe;
        for (const QString &field : fields)
            safe.append(tabSafe(field));
        m_out << safe.join(u'\t') << '\n';
    };
    qlaDatabase6::SubgroupFilter filter;
    filter.part = command.part;
    filter.process = command.process;
    filter.since = command.since;
    write(heading);
    for (const StoredValue &row : m_database.subgroupValues(filter)) {
        write({QString::number(row.subgroupId), timeText(row.header.dateTime), row.header.partGroup,
               row.header.part, row.header.processGroup, row.header.process, row.header.sourceTag,
               QString::number(row.header.valueCount), row.testItem, QString::number(row.kind),
               QString::number(row.sampleNumber), numberText(row.value), row.text});
    }
}

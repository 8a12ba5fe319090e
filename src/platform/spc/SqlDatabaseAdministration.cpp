// The administration half of SqlDatabase: listing and creating records, setting
// limits and reading stored subgroups back, for the administration tool and the
// selection dialogs.

#include "SqlDatabase.h"

#include "SqlTables.h"

#include <QSqlQuery>

#include <algorithm>

namespace qlaDatabase6 {

namespace {

// Names sort the same way on every server: without regard to case first.
bool nameBefore(const QString &a, const QString &b)
{
    const int folded = QString::compare(a, b, Qt::CaseInsensitive);
    return folded != 0 ? folded < 0 : a < b;
}

void checkName(RecordKind kind, const QString &name, const char *source)
{
    QString problem;
    if (name.trimmed().isEmpty())
        problem = QStringLiteral("A %1 needs a name");
    else if (name.trimmed() != name)
        problem = QStringLiteral("The name of a %1 may not begin or end with blanks");
    else if (name.size() > 255)
        problem = QStringLiteral("The name of a %1 may have 255 characters at most");
    if (!problem.isEmpty())
        throw ProgramError::raised(problem.arg(recordKindText(kind)), QLatin1String(source));
}

} // namespace

QList<Record> SqlDatabase::listRecords(RecordKind kind, const QString &filter)
{
    return guarded("SqlDatabase.listRecords", [&] {
        const bool grouped = tables::hasGroup(kind);
        const QString table = tables::recordTable(kind);
        QString statement = grouped ? QStringLiteral("SELECT r.id, r.name, g.id, g.name FROM %1 r"
                                                     " LEFT JOIN spc_groups g ON g.id = r.group_id")
                                          .arg(table)
                                    : QStringLiteral("SELECT r.id, r.name FROM %1 r").arg(table);
        QVariantList values;
        if (!filter.isEmpty()) {
            // The file database's LIKE ignores case by itself; the server needs ILIKE.
            statement += m_dialect == Dialect::SQLite ? QStringLiteral(" WHERE r.name LIKE ?")
                                                      : QStringLiteral(" WHERE r.name ILIKE ?");
            statement += QStringLiteral(" ESCAPE '\\'");
            values.append(tables::containsPattern(filter));
        }
        QSqlQuery query = sql::execute(m_database, statement, values, "SqlDatabase.listRecords");
        QList<Record> records;
        while (query.next()) {
            Record record(kind);
            record.setId(query.value(0).toLongLong());
            record.setName(query.value(1).toString());
            if (grouped) {
                record.setGroupId(query.value(2).toLongLong());
                record.setGroupName(query.value(3).toString());
            }
            records.append(record);
        }
        std::sort(records.begin(), records.end(),
                  [](const Record &a, const Record &b) { return nameBefore(a.name(), b.name()); });
        return records;
    });
}

Record SqlDatabase::createRecord(RecordKind kind, const QString &name, const QString &groupName)
{
    return guarded("SqlDatabase.createRecord", [&] {
        const char *const procedure = "SqlDatabase.createRecord";
        checkName(kind, name, procedure);
        Record record(kind);
        record.setName(name);
        if (!groupName.isEmpty()) {
            if (!tables::hasGroup(kind))
                throw ProgramError::raised(
                    QStringLiteral("A %1 belongs to no group").arg(recordKindText(kind)),
                    QLatin1String(procedure));
            Group group;
            group.setName(groupName);
            if (!loadRecord(group))
                throw ProgramError::raised(
                    QStringLiteral("There is no group \"%1\"").arg(groupName),
                    QLatin1String(procedure));
            record.setGroupId(group.id());
            record.setGroupName(group.name());
        }
        Record existing(kind);
        existing.setName(name);
        if (loadRecord(existing))
            throw ProgramError::raised(
                QStringLiteral("The %1 \"%2\" already exists").arg(recordKindText(kind), name),
                QLatin1String(procedure));

        const QString table = tables::recordTable(kind);
        QSqlQuery insert =
            tables::hasGroup(kind)
                ? sql::execute(m_database,
                               QStringLiteral("INSERT INTO %1 (name, group_id) VALUES (?, ?)"
                                              " RETURNING id")
                                   .arg(table),
                               {name, record.groupId() != 0
                                          ? QVariant(record.groupId())
                                          : QVariant(QMetaType::fromType<qint64>())},
                               procedure)
                : sql::execute(
                      m_database,
                      QStringLiteral("INSERT INTO %1 (name) VALUES (?) RETURNING id").arg(table),
                      {name}, procedure);
        record.setId(tables::returnedId(insert, procedure));
        return record;
    });
}

QList<SpecLimit> SqlDatabase::listSpecLimits()
{
    return guarded("SqlDatabase.listSpecLimits", [&] {
        QSqlQuery query = sql::execute(
            m_database,
            QStringLiteral("SELECT l.part_id, p.name, l.test_id, t.name, l.limit_flags,"
                           " l.upper_spec_limit, l.lower_spec_limit, l.upper_warning_limit,"
                           " l.lower_warning_limit FROM spec_limits l"
                           " JOIN parts p ON p.id = l.part_id JOIN tests t ON t.id = l.test_id"),
            {}, "SqlDatabase.listSpecLimits");
        QList<SpecLimit> limits;
        while (query.next()) {
            SpecLimit limit;
            limit.setPartId(query.value(0).toLongLong());
            limit.setTestId(query.value(2).toLongLong());
            limit.setNames(query.value(1).toString(), query.value(3).toString());
            limit.setLimits(query.value(4).toInt(), query.value(5).toDouble(),
                            query.value(6).toDouble(), query.value(7).toDouble(),
                            query.value(8).toDouble());
            limits.append(limit);
        }
        std::sort(limits.begin(), limits.end(), [](const SpecLimit &a, const SpecLimit &b) {
            if (a.partName() != b.partName())
                return nameBefore(a.partName(), b.partName());
            return nameBefore(a.testName(), b.testName());
        });
        return limits;
    });
}

void SqlDatabase::setSpecLimit(const SpecLimit &limit)
{
    guarded("SqlDatabase.setSpecLimit", [&] {
        const char *const procedure = "SqlDatabase.setSpecLimit";
        limit.checkOrder(QLatin1String(procedure));
        Part part;
        part.setLookup(Record::kLookupById);
        part.setId(limit.partId());
        Test test;
        test.setLookup(Record::kLookupById);
        test.setId(limit.testId());
        if (!loadRecord(part) || !loadRecord(test))
            throw ProgramError::raised(QStringLiteral("There is no part %1 or no test %2")
                                           .arg(limit.partId())
                                           .arg(limit.testId()),
                                       QLatin1String(procedure));
        sql::execute(m_database,
                     QStringLiteral(
                         "INSERT INTO spec_limits (part_id, test_id, limit_flags, upper_spec_limit,"
                         " lower_spec_limit, upper_warning_limit, lower_warning_limit)"
                         " VALUES (?, ?, ?, ?, ?, ?, ?) ON CONFLICT (part_id, test_id) DO UPDATE"
                         " SET limit_flags = excluded.limit_flags,"
                         " upper_spec_limit = excluded.upper_spec_limit,"
                         " lower_spec_limit = excluded.lower_spec_limit,"
                         " upper_warning_limit = excluded.upper_warning_limit,"
                         " lower_warning_limit = excluded.lower_warning_limit"),
                     {limit.partId(), limit.testId(), limit.limitFlags(), limit.upperSpecLimit(),
                      limit.lowerSpecLimit(), limit.upperWarningLimit(), limit.lowerWarningLimit()},
                     procedure);
    });
}

bool SqlDatabase::clearSpecLimit(qint64 partId, qint64 testId)
{
    return guarded("SqlDatabase.clearSpecLimit", [&] {
        QSqlQuery query = sql::execute(
            m_database, QStringLiteral("DELETE FROM spec_limits WHERE part_id = ? AND test_id = ?"),
            {partId, testId}, "SqlDatabase.clearSpecLimit");
        return query.numRowsAffected() > 0;
    });
}

QList<StoredValue> SqlDatabase::subgroupValues(const SubgroupFilter &filter)
{
    return guarded("SqlDatabase.subgroupValues", [&] {
        QString statement = QStringLiteral(
            "SELECT s.id, s.header_flag, s.value_count, s.sample_time, s.part_group, s.part,"
            " s.process_group, s.process, s.source_tag, i.name, i.kind, v.sample_number,"
            " v.value, v.value_text FROM subgroups s"
            " JOIN test_items i ON i.subgroup_id = s.id"
            " JOIN sample_values v ON v.test_item_id = i.id WHERE 1 = 1");
        QVariantList values;
        if (!filter.part.isEmpty()) {
            statement += QStringLiteral(" AND s.part = ?");
            values.append(filter.part);
        }
        if (!filter.process.isEmpty()) {
            statement += QStringLiteral(" AND s.process = ?");
            values.append(filter.process);
        }
        if (filter.since.isValid()) {
            statement += QStringLiteral(" AND s.sample_time >= ?");
            values.append(tables::timeText(filter.since));
        }
        if (filter.until.isValid()) {
            statement += QStringLiteral(" AND s.sample_time <= ?");
            values.append(tables::timeText(filter.until));
        }
        if (!filter.testItem.isEmpty()) {
            statement += QStringLiteral(" AND i.name = ?");
            values.append(filter.testItem);
        }
        statement += QStringLiteral(" ORDER BY s.sample_time, s.id, i.item_order,"
                                    " v.sample_number, v.id");
        QSqlQuery query = sql::execute(m_database, statement, values, "SqlDatabase.subgroupValues");
        QList<StoredValue> rows;
        while (query.next()) {
            StoredValue row;
            row.subgroupId = query.value(0).toLongLong();
            row.header.flag = query.value(1).toInt() != 0;
            row.header.valueCount = query.value(2).toInt();
            row.header.dateTime = tables::timeFrom(query.value(3));
            row.header.partGroup = query.value(4).toString();
            row.header.part = query.value(5).toString();
            row.header.processGroup = query.value(6).toString();
            row.header.process = query.value(7).toString();
            row.header.sourceTag = query.value(8).toString();
            row.testItem = query.value(9).toString();
            row.kind = query.value(10).toInt();
            row.sampleNumber = query.value(11).toInt();
            row.value = query.value(12).toDouble();
            row.text = query.value(13).toString();
            rows.append(row);
        }
        return rows;
    });
}

} // namespace qlaDatabase6

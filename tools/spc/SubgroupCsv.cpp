#include "SubgroupCsv.h"

#include "CsvReader.h"

#include <QLocale>

using qlaDatabase6::Subgroup;
using qlaDatabase6::SubgroupHeader;
using qlaDatabase6::TestItem;

namespace {

enum Column {
    kSubgroup,
    kDateTime,
    kPartGroup,
    kPart,
    kProcessGroup,
    kProcess,
    kSourceTag,
    kValueCount,
    kTestItem,
    kKind,
    kSampleNumber,
    kValue,
    kText,
    kColumns
};

struct Row
{
    QString subgroup;
    SubgroupHeader header;
    QString testItem;
    int kind = 0;
    qint32 sampleNumber = 0;
    double value = 0;
    QString text;
};

// One row's fields, or the reason they are not a stored value.
std::optional<Row> rowFrom(const QStringList &fields, QString &problem)
{
    if (fields.size() != kColumns) {
        problem = QStringLiteral("%1 fields instead of %2").arg(fields.size()).arg(kColumns);
        return std::nullopt;
    }
    Row row;
    bool ok = false;
    row.subgroup = fields[kSubgroup];
    row.header.dateTime = QDateTime::fromString(fields[kDateTime], Qt::ISODateWithMs);
    if (!row.header.dateTime.isValid()) {
        problem = QStringLiteral("\"%1\" is not a date and time").arg(fields[kDateTime]);
        return std::nullopt;
    }
    row.header.partGroup = fields[kPartGroup];
    row.header.part = fields[kPart];
    row.header.processGroup = fields[kProcessGroup];
    row.header.process = fields[kProcess];
    row.header.sourceTag = fields[kSourceTag];
    row.header.valueCount = fields[kValueCount].toInt(&ok);
    const QLocale c = QLocale::c();
    if (ok)
        row.kind = fields[kKind].toInt(&ok);
    if (ok)
        row.sampleNumber = fields[kSampleNumber].toInt(&ok);
    if (ok)
        row.value = c.toDouble(fields[kValue], &ok);
    if (!ok || row.sampleNumber < 1 ||
        (row.kind != TestItem::kMeasuredValue && row.kind != TestItem::kAlarmList) ||
        row.header.part.isEmpty() || row.header.process.isEmpty() || fields[kTestItem].isEmpty()) {
        problem = QStringLiteral("the value count, kind, sample number, value, part, process "
                                 "or test item is not acceptable");
        return std::nullopt;
    }
    row.testItem = fields[kTestItem];
    row.text = fields[kText];
    return row;
}

bool sameHeader(const SubgroupHeader &a, const SubgroupHeader &b)
{
    return a.dateTime == b.dateTime && a.partGroup == b.partGroup && a.part == b.part &&
           a.processGroup == b.processGroup && a.process == b.process &&
           a.sourceTag == b.sourceTag && a.valueCount == b.valueCount;
}

} // namespace

const QStringList &SubgroupCsv::heading()
{
    static const QStringList columns = {
        QStringLiteral("subgroup"),   QStringLiteral("date_time"),     QStringLiteral("part_group"),
        QStringLiteral("part"),       QStringLiteral("process_group"), QStringLiteral("process"),
        QStringLiteral("source_tag"), QStringLiteral("value_count"),   QStringLiteral("test_item"),
        QStringLiteral("kind"),       QStringLiteral("sample_number"), QStringLiteral("value"),
        QStringLiteral("text")};
    return columns;
}

std::optional<QList<Subgroup>> SubgroupCsv::read(const QString &text, QString &errorText)
{
    QList<QStringList> rows;
    if (!CsvReader::parse(text, rows, errorText))
        return std::nullopt;
    if (rows.isEmpty() || rows.first() != heading()) {
        errorText = QStringLiteral("the first row is not the heading of the subgroup report");
        return std::nullopt;
    }
    QList<Subgroup> subgroups;
    QString current;
    for (qsizetype i = 1; i < rows.size(); ++i) {
        if (rows[i] == QStringList{QString()})
            continue;
        QString problem;
        const std::optional<Row> row = rowFrom(rows[i], problem);
        if (row && !subgroups.isEmpty() && row->subgroup == current &&
            !sameHeader(row->header, subgroups.last().header()))
            problem = QStringLiteral("subgroup %1 changes its header").arg(current);
        if (!problem.isEmpty()) {
            errorText = QStringLiteral("row %1: %2").arg(i + 1).arg(problem);
            return std::nullopt;
        }
        if (subgroups.isEmpty() || row->subgroup != current) {
            subgroups.append(Subgroup());
            subgroups.last().setHeader(row->header);
            current = row->subgroup;
        }
        Subgroup &subgroup = subgroups.last();
        const QList<TestItem> &items = subgroup.testItems();
        if (items.isEmpty() || items.last().name != row->testItem || items.last().kind != row->kind)
            subgroup.AddTestItem(row->testItem, row->kind);
        subgroup.addValue(row->sampleNumber, row->value, row->text);
    }
    return subgroups;
}

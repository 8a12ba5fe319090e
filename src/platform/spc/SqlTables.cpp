#include "SqlTables.h"

#include "platform/ProgramError.h"

#include <QSqlQuery>

namespace qlaDatabase6::tables {

QString recordTable(RecordKind kind)
{
    switch (kind) {
    case RecordKind::Group:
        return QStringLiteral("spc_groups");
    case RecordKind::Part:
        return QStringLiteral("parts");
    case RecordKind::Process:
        return QStringLiteral("processes");
    case RecordKind::Test:
        return QStringLiteral("tests");
    }
    return {};
}

bool hasGroup(RecordKind kind)
{
    return kind == RecordKind::Part || kind == RecordKind::Process;
}

QString timeText(const QDateTime &time)
{
    return time.toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz"));
}

QDateTime timeFrom(const QVariant &stored)
{
    if (stored.typeId() == QMetaType::QDateTime)
        return stored.toDateTime();
    QString text = stored.toString();
    text.replace(u' ', u'T');
    return QDateTime::fromString(text, Qt::ISODateWithMs);
}

QVariant optionalText(const QString &text)
{
    if (text.isEmpty())
        return QVariant(QMetaType::fromType<QString>());
    return text;
}

QString containsPattern(const QString &filter)
{
    QString escaped;
    escaped.reserve(filter.size() + 2);
    escaped += u'%';
    for (const QChar c : filter) {
        if (c == u'\\' || c == u'%' || c == u'_')
            escaped += u'\\';
        escaped += c;
    }
    escaped += u'%';
    return escaped;
}

qint64 returnedId(QSqlQuery &query, const char *source)
{
    if (!query.next())
        throw ProgramError::raised(QStringLiteral("SPC database: no identifier was returned"),
                                   QLatin1String(source));
    const qint64 id = query.value(0).toLongLong();
    // Ends the statement, so the file database can commit behind it.
    query.finish();
    return id;
}

} // namespace qlaDatabase6::tables

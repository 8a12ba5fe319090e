#include "SqlStatement.h"

#include <QSqlDatabase>
#include <QSqlError>

namespace qlaDatabase6::sql {

ProgramError failure(const QSqlError &error, const QString &source)
{
    QString text = error.text().trimmed();
    if (text.isEmpty())
        text = QStringLiteral("unknown failure");
    return ProgramError::raised(QStringLiteral("SPC database: ") + text, source);
}

QSqlQuery prepare(const QSqlDatabase &database, const QString &statement, const char *source)
{
    QSqlQuery query(database);
    query.setForwardOnly(true);
    if (!query.prepare(statement))
        throw failure(query.lastError(), QLatin1String(source));
    return query;
}

void run(QSqlQuery &query, const QVariantList &values, const char *source)
{
    int position = 0;
    for (const QVariant &value : values)
        query.bindValue(position++, value);
    if (!query.exec())
        throw failure(query.lastError(), QLatin1String(source));
}

QSqlQuery execute(const QSqlDatabase &database, const QString &statement,
                  const QVariantList &values, const char *source)
{
    QSqlQuery query = prepare(database, statement, source);
    run(query, values, source);
    return query;
}

void executeDirect(const QSqlDatabase &database, const QString &statement, const char *source)
{
    QSqlQuery query(database);
    if (!query.exec(statement))
        throw failure(query.lastError(), QLatin1String(source));
}

} // namespace qlaDatabase6::sql

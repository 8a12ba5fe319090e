#pragma once

#include "platform/ProgramError.h"

#include <QSqlQuery>
#include <QString>
#include <QVariant>

class QSqlDatabase;
class QSqlError;

namespace qlaDatabase6 {

enum class Dialect { SQLite, PostgreSQL };

// Running statements with bound values: every failure becomes a ProgramError that
// carries the driver's own text, with the procedure that ran the statement as source.
namespace sql {

ProgramError failure(const QSqlError &error, const QString &source);

// Prepares a statement (positional "?" placeholders).
QSqlQuery prepare(const QSqlDatabase &database, const QString &statement, const char *source);

// Binds the values in order and runs a prepared statement.
void run(QSqlQuery &query, const QVariantList &values, const char *source);

// Prepares and runs a statement in one go; the query is returned for its rows.
QSqlQuery execute(const QSqlDatabase &database, const QString &statement,
                  const QVariantList &values, const char *source);

// Runs a statement that takes no values and cannot be prepared on every server
// (table and index definitions, transaction control).
void executeDirect(const QSqlDatabase &database, const QString &statement, const char *source);

} // namespace sql
} // namespace qlaDatabase6

#pragma once

#include "Records.h"

#include <QDateTime>
#include <QString>
#include <QVariant>

class QSqlQuery;

namespace qlaDatabase6::tables {

// The table that holds records of a kind.
QString recordTable(RecordKind kind);
// Parts and processes belong to a group; groups and tests do not.
bool hasGroup(RecordKind kind);

// Date-times are kept as local time without a zone, written as ISO 8601 text with
// milliseconds (the file database compares them as text, the server as timestamps).
QString timeText(const QDateTime &time);
QDateTime timeFrom(const QVariant &stored);

// A text that may be absent: absent is stored as NULL.
QVariant optionalText(const QString &text);

// A LIKE pattern that finds names containing `filter`, escaped with '\'.
QString containsPattern(const QString &filter);

// The identifier that an INSERT ... RETURNING id gave back.
qint64 returnedId(QSqlQuery &query, const char *source);

} // namespace qlaDatabase6::tables

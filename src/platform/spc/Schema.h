#pragma once

#include "SqlStatement.h"

#include <QStringList>

class QSqlDatabase;

namespace qlaDatabase6 {

// The tables of the SPC database and the ordered steps that bring a database from one
// version to the next. The version a database is at lives in the one-row table
// schema_version; a database without it is at version 0 (empty). Steps are only ever
// appended: a workstation with an older database brings it forward when it connects.
class Schema
{
public:
    static int latestVersion();

    // The statements of the step that brings a database to `version` (1 ..
    // latestVersion()), written for the given server.
    static QStringList stepStatements(int version, Dialect dialect);

    // The version of a connected database; 0 when it has no schema_version table.
    static int currentVersion(const QSqlDatabase &database, Dialect dialect);

    // Brings a connected database forward to targetVersion in one transaction, so two
    // workstations connecting at once do not both create the tables. Throws a
    // ProgramError when a step fails (nothing of it is kept) or the database is at a
    // newer version than this program knows.
    static void migrate(const QSqlDatabase &database, Dialect dialect,
                        int targetVersion = latestVersion());
};

} // namespace qlaDatabase6

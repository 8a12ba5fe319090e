#pragma once

#include "platform/spc/SqlDatabase.h"
#include "platform/spc/SqlStatement.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

// A fresh, empty SPC database for one test case, on the backend the case's data row
// names: "sqlite" (a file in a temporary folder) or "postgresql" (a database of its
// own on the server that CORVANE_TEST_PG_DSN names, dropped again afterwards; the
// role there must be allowed to create databases). Without CORVANE_TEST_PG_DSN the
// PostgreSQL cases are skipped.
class ScratchDatabase
{
public:
    enum class State { Ready, Skipped, Failed };

    explicit ScratchDatabase(const QString &backend);
    ~ScratchDatabase();
    ScratchDatabase(const ScratchDatabase &) = delete;
    ScratchDatabase &operator=(const ScratchDatabase &) = delete;

    State state() const { return m_state; }
    const QString &message() const { return m_message; }
    const QString &dsn() const { return m_dsn; }

private:
    void createOnServer(const QString &serverDsn);

    State m_state = State::Failed;
    QString m_message;
    QString m_dsn;
    QString m_folder;
    QString m_serverDatabase;
    QString m_adminConnection;
};

// A connection of the test's own to a data source, beside the one under test: to look
// into the tables, or to change them behind its back.
class RawConnection
{
public:
    explicit RawConnection(const QString &dsn);
    ~RawConnection();
    RawConnection(const RawConnection &) = delete;
    RawConnection &operator=(const RawConnection &) = delete;

    bool isOpen() const { return m_database.isOpen(); }
    QString errorText() const { return m_error; }
    const QSqlDatabase &database() const { return m_database; }
    qlaDatabase6::Dialect dialect() const { return m_dialect; }

    // Runs a statement; false (with errorText) when it fails.
    bool exec(const QString &statement, const QVariantList &values = {});
    // The first column of the first row, or an invalid variant.
    QVariant scalar(const QString &statement, const QVariantList &values = {});
    int count(const QString &table);
    bool hasIndex(const QString &name);

private:
    bool run(QSqlQuery &query, const QString &statement, const QVariantList &values);

    QString m_name;
    QString m_error;
    QSqlDatabase m_database;
    qlaDatabase6::Dialect m_dialect = qlaDatabase6::Dialect::SQLite;
};

// Opens the scratch database of the given backend or skips the case.
#define SCRATCH_DATABASE_ON(scratch, backend)                                                      \
    ScratchDatabase scratch(backend);                                                              \
    if (scratch.state() == ScratchDatabase::State::Skipped)                                        \
        QSKIP(qPrintable(scratch.message()));                                                      \
    QVERIFY2(scratch.state() == ScratchDatabase::State::Ready, qPrintable(scratch.message()))

// Opens the scratch database of the data row's backend or skips the case.
#define SCRATCH_DATABASE(scratch)                                                                  \
    QFETCH(QString, backend);                                                                      \
    SCRATCH_DATABASE_ON(scratch, backend)

// The scratch database of the data row's backend and a database object connected to it.
#define CONNECTED_SCRATCH_DATABASE(scratch, database)                                              \
    SCRATCH_DATABASE(scratch);                                                                     \
    qlaDatabase6::SqlDatabase database;                                                            \
    QVERIFY(connectTo(database, scratch.dsn()))

// The two backends as a data column named "backend".
void addBackendRows();

// Connects a database object to a data source; a failure is logged with its reason.
bool connectTo(qlaDatabase6::SqlDatabase &database, const QString &dsn);

// Parts, processes and tests of a plant: "Housing" and "Seal weld" in the group
// "Line 3", "Cover" and "Spot weld" in no group, the tests "Weld Time" and "Energy",
// and limits for Housing's Energy (upper 900, lower 700, upper warning 850).
void fillPlant(qlaDatabase6::Database &database);

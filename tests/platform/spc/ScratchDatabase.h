#pragma once

#include "platform/spc/SqlStatement.h"

#include <QSqlDatabase>
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
    qlaDatabase6::Dialect dialect() const { return m_dialect; }

    // The data source of the server under test, or empty.
    static QString serverDsn();

private:
    void createOnServer();

    State m_state = State::Failed;
    QString m_message;
    QString m_dsn;
    QString m_folder;
    QString m_serverDatabase;
    QString m_adminConnection;
    qlaDatabase6::Dialect m_dialect = qlaDatabase6::Dialect::SQLite;
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
    QString m_name;
    QString m_error;
    QSqlDatabase m_database;
    qlaDatabase6::Dialect m_dialect = qlaDatabase6::Dialect::SQLite;
};

// Opens the scratch database of the data row's backend or skips the case.
#define SCRATCH_DATABASE(scratch)                                                                  \
    QFETCH(QString, backend);                                                                      \
    ScratchDatabase scratch(backend);                                                              \
    if (scratch.state() == ScratchDatabase::State::Skipped)                                        \
        QSKIP(qPrintable(scratch.message()));                                                      \
    QVERIFY2(scratch.state() == ScratchDatabase::State::Ready, qPrintable(scratch.message()))

// The two backends as a data column named "backend".
void addBackendRows();

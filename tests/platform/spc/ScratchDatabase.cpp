#include "ScratchDatabase.h"

#include "platform/spc/DataSource.h"
#include "platform/spc/PasswordFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>

using qlaDatabase6::DataSource;
using qlaDatabase6::Dialect;

namespace {

std::atomic<int> g_scratchNumber{0};

QString newConnectionName()
{
    return QStringLiteral("test-%1").arg(++g_scratchNumber);
}

// Opens a Qt SQL connection to a data source the way the program does, without the
// schema.
QSqlDatabase openDataSource(const QString &dsn, const QString &name, Dialect &dialect,
                            QString &error)
{
    DataSource source;
    if (!DataSource::parse(dsn, source, error))
        return {};
    const bool sqlite = source.kind() == DataSource::Kind::SQLite;
    dialect = sqlite ? Dialect::SQLite : Dialect::PostgreSQL;
    QSqlDatabase database = QSqlDatabase::addDatabase(
        sqlite ? QStringLiteral("QSQLITE") : QStringLiteral("QPSQL"), name);
    if (sqlite) {
        database.setDatabaseName(source.filePath());
    } else {
        database.setHostName(source.host());
        database.setPort(source.port());
        database.setDatabaseName(source.database());
        database.setUserName(source.user());
        database.setPassword(qlaDatabase6::PasswordFile::resolvePassword(
            source.host(), source.port(), source.database(), source.user()));
    }
    if (!database.open())
        error = database.lastError().text();
    return database;
}

} // namespace

void addBackendRows()
{
    QTest::addColumn<QString>("backend");
    QTest::newRow("sqlite") << QStringLiteral("sqlite");
    QTest::newRow("postgresql") << QStringLiteral("postgresql");
}

bool connectTo(qlaDatabase6::SqlDatabase &database, const QString &dsn)
{
    database.setDataSourceName(dsn);
    const bool connected = database.openConnection();
    if (!connected)
        qWarning("%s", qPrintable(database.lastErrorText()));
    return connected;
}

void fillPlant(qlaDatabase6::Database &database)
{
    using qlaDatabase6::RecordKind;
    database.createRecord(RecordKind::Group, QStringLiteral("Line 3"));
    const qint64 part =
        database.createRecord(RecordKind::Part, QStringLiteral("Housing"), QStringLiteral("Line 3"))
            .id();
    database.createRecord(RecordKind::Part, QStringLiteral("Cover"));
    database.createRecord(RecordKind::Process, QStringLiteral("Seal weld"),
                          QStringLiteral("Line 3"));
    database.createRecord(RecordKind::Process, QStringLiteral("Spot weld"));
    database.createRecord(RecordKind::Test, QStringLiteral("Weld Time"));
    qlaDatabase6::SpecLimit limit;
    limit.setPartId(part);
    limit.setTestId(database.createRecord(RecordKind::Test, QStringLiteral("Energy")).id());
    limit.setUpperSpecLimit(900);
    limit.setLowerSpecLimit(700);
    limit.setUpperWarningLimit(850);
    database.setSpecLimit(limit);
}

ScratchDatabase::ScratchDatabase(const QString &backend)
{
    if (backend == QLatin1String("sqlite")) {
        QTemporaryDir folder(QDir::temp().filePath(QStringLiteral("corvane-spc-XXXXXX")));
        folder.setAutoRemove(false);
        m_folder = folder.path();
        m_dsn = QDir(m_folder).filePath(QStringLiteral("spc.db"));
        m_state = folder.isValid() ? State::Ready : State::Failed;
        m_message = folder.errorString();
        return;
    }
    const QString serverDsn = qEnvironmentVariable("CORVANE_TEST_PG_DSN");
    if (serverDsn.isEmpty()) {
        m_state = State::Skipped;
        m_message = QStringLiteral("CORVANE_TEST_PG_DSN is not set; run the tests under "
                                   "scripts/with-postgres.sh for the PostgreSQL cases");
        return;
    }
    createOnServer(serverDsn);
}

void ScratchDatabase::createOnServer(const QString &serverDsn)
{
    DataSource server;
    if (!DataSource::parse(serverDsn, server, m_message))
        return;
    m_adminConnection = newConnectionName();
    Dialect dialect;
    QSqlDatabase admin = openDataSource(serverDsn, m_adminConnection, dialect, m_message);
    if (!admin.isOpen())
        return;
    m_serverDatabase = QStringLiteral("corvane_t_%1_%2")
                           .arg(QCoreApplication::applicationPid())
                           .arg(++g_scratchNumber);
    QSqlQuery create(admin);
    if (!create.exec(QStringLiteral("CREATE DATABASE ") + m_serverDatabase)) {
        m_message = create.lastError().text();
        m_serverDatabase.clear();
        return;
    }
    m_dsn = QStringLiteral("postgresql://%1@%2:%3/%4")
                .arg(server.user(), server.host())
                .arg(server.port())
                .arg(m_serverDatabase);
    m_state = State::Ready;
}

ScratchDatabase::~ScratchDatabase()
{
    if (!m_folder.isEmpty())
        QDir(m_folder).removeRecursively();
    if (m_adminConnection.isEmpty())
        return;
    {
        QSqlDatabase admin = QSqlDatabase::database(m_adminConnection, false);
        if (!m_serverDatabase.isEmpty()) {
            QSqlQuery drop(admin);
            drop.exec(
                QStringLiteral("DROP DATABASE IF EXISTS %1 WITH (FORCE)").arg(m_serverDatabase));
        }
        admin.close();
    }
    QSqlDatabase::removeDatabase(m_adminConnection);
}

RawConnection::RawConnection(const QString &dsn)
    : m_name(newConnectionName())
{
    m_database = openDataSource(dsn, m_name, m_dialect, m_error);
}

RawConnection::~RawConnection()
{
    m_database.close();
    m_database = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_name);
}

// Statements without values run as they are: the server cannot prepare every kind
// (a function definition, for one).
bool RawConnection::run(QSqlQuery &query, const QString &statement, const QVariantList &values)
{
    bool ok = values.isEmpty() ? query.exec(statement) : query.prepare(statement);
    for (int i = 0; ok && i < values.size(); ++i)
        query.bindValue(i, values[i]);
    if (ok && !values.isEmpty())
        ok = query.exec();
    if (!ok)
        m_error = query.lastError().text();
    return ok;
}

bool RawConnection::exec(const QString &statement, const QVariantList &values)
{
    QSqlQuery query(m_database);
    return run(query, statement, values);
}

QVariant RawConnection::scalar(const QString &statement, const QVariantList &values)
{
    QSqlQuery query(m_database);
    return run(query, statement, values) && query.next() ? query.value(0) : QVariant();
}

int RawConnection::count(const QString &table)
{
    return scalar(QStringLiteral("SELECT COUNT(*) FROM ") + table).toInt();
}

bool RawConnection::hasIndex(const QString &name)
{
    const QString statement =
        m_dialect == Dialect::SQLite
            ? QStringLiteral("SELECT COUNT(*) FROM sqlite_master WHERE type = 'index' AND name = ?")
            : QStringLiteral("SELECT COUNT(*) FROM pg_indexes WHERE indexname = ?");
    return scalar(statement, {name}).toInt() > 0;
}

#include "SqlDatabase.h"

#include "PasswordFile.h"
#include "Schema.h"
#include "SqlTables.h"

#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>

#include <QHash>
#include <QMutex>
#include <QThread>

namespace qlaDatabase6 {

namespace {

QString sqliteOptions()
{
    // Several monitors may write the same file: wait for each other's transactions.
    return QStringLiteral("QSQLITE_BUSY_TIMEOUT=10000");
}

QString serverOptions()
{
    // An address that never answers must not hold the monitor for minutes.
    return QStringLiteral("connect_timeout=10;application_name=corvane");
}

// The monitors of one workstation that store into the same data source share one Qt SQL
// connection: a hall of five hundred welders must not hold five hundred sessions of the
// plant's server, which refuses clients beyond its limit. The monitors run in one thread
// and each store is one synchronous transaction, so they never interleave on it.
class ConnectionRegistry
{
public:
    static ConnectionRegistry &instance()
    {
        static ConnectionRegistry registry;
        return registry;
    }

    // The name of the connection to `dsn` for the calling thread; `made` tells whether
    // it is new and still to be opened.
    QString acquire(const QString &dsn, bool &made)
    {
        const QMutexLocker lock(&m_mutex);
        const QString key = keyOf(dsn);
        const auto found = m_current.constFind(key);
        made = found == m_current.constEnd();
        const QString name =
            made ? QStringLiteral("corvane-spc-%1").arg(++m_connectionNumber) : *found;
        m_current.insert(key, name);
        ++m_users[name];
        return name;
    }

    // Gives up one use of the connection. A broken one (its server gone, its file
    // deleted, never opened) is no longer handed out; the last user closes it.
    void release(const QString &dsn, const QString &name, bool broken)
    {
        bool last = false;
        {
            const QMutexLocker lock(&m_mutex);
            const QString key = keyOf(dsn);
            last = --m_users[name] == 0;
            if (last)
                m_users.remove(name);
            if ((broken || last) && m_current.value(key) == name)
                m_current.remove(key);
        }
        if (last) {
            QSqlDatabase::database(name, false).close();
            QSqlDatabase::removeDatabase(name);
        }
    }

private:
    static QString keyOf(const QString &dsn)
    {
        // Qt SQL connections belong to the thread that made them.
        return QString::number(quintptr(QThread::currentThread())) + u'|' + dsn;
    }

    QMutex m_mutex;
    int m_connectionNumber = 0;
    QHash<QString, QString> m_current; // thread and data source -> connection name
    QHash<QString, int> m_users;       // connection name -> monitors using it
};

} // namespace

SqlDatabase::SqlDatabase(QObject *parent)
    : Database(parent)
{}

SqlDatabase::~SqlDatabase()
{
    dropConnection(Connection::Sound);
}

void SqlDatabase::setDataSourceName(const QString &dsn)
{
    if (dsn == m_dataSourceName)
        return;
    closeConnection();
    m_dataSourceName = dsn;
}

bool SqlDatabase::isConnected() const
{
    return m_open;
}

void SqlDatabase::fail(const QString &text)
{
    m_lastError = text;
    dropConnection(Connection::Broken);
}

bool SqlDatabase::openConnection()
{
    dropConnection(Connection::Sound);
    m_lastError.clear();
    QString problem;
    if (!DataSource::parse(m_dataSourceName, m_source, problem)) {
        fail(problem);
        return false;
    }
    const bool sqlite = m_source.kind() == DataSource::Kind::SQLite;
    m_dialect = sqlite ? Dialect::SQLite : Dialect::PostgreSQL;
    const QString driver = sqlite ? QStringLiteral("QSQLITE") : QStringLiteral("QPSQL");
    if (!QSqlDatabase::isDriverAvailable(driver)) {
        // The Windows build carries no PostgreSQL client; a plant database there is
        // refused with a reason, and the workstation's SQLite file still works.
        fail(sqlite ? QStringLiteral("The database driver %1 is not installed").arg(driver)
                    : QStringLiteral("PostgreSQL is unavailable on this installation (the "
                                     "database driver %1 is not installed); use an SQLite "
                                     "database file instead")
                          .arg(driver));
        return false;
    }
    bool made = false;
    m_connectionName = ConnectionRegistry::instance().acquire(m_dataSourceName, made);
    if (!made)
        m_database = QSqlDatabase::database(m_connectionName, false);
    else if (!openNewConnection(driver))
        return false;
    m_open = true;
    m_reconnect = true;
    emit connected();
    return true;
}

bool SqlDatabase::openNewConnection(const QString &driver)
{
    const bool sqlite = m_dialect == Dialect::SQLite;
    m_database = QSqlDatabase::addDatabase(driver, m_connectionName);
    if (sqlite) {
        m_database.setDatabaseName(m_source.filePath());
        m_database.setConnectOptions(sqliteOptions());
    } else {
        m_database.setHostName(m_source.host());
        m_database.setPort(m_source.port());
        m_database.setDatabaseName(m_source.database());
        m_database.setUserName(m_source.user());
        m_database.setPassword(PasswordFile::resolvePassword(m_source.host(), m_source.port(),
                                                             m_source.database(), m_source.user()));
        m_database.setConnectOptions(serverOptions());
    }
    if (!m_database.open()) {
        fail(QStringLiteral("Unable to connect to %1: %2")
                 .arg(m_dataSourceName, m_database.lastError().text().trimmed()));
        return false;
    }
    try {
        if (sqlite)
            sql::executeDirect(m_database, QStringLiteral("PRAGMA foreign_keys = ON"),
                               "SqlDatabase.openConnection");
        Schema::migrate(m_database, m_dialect);
    } catch (const ProgramError &error) {
        fail(error.description());
        return false;
    }
    return true;
}

void SqlDatabase::closeConnection()
{
    m_reconnect = false;
    dropConnection(Connection::Sound);
}

void SqlDatabase::dropConnection(Connection state)
{
    m_open = false;
    if (m_connectionName.isEmpty())
        return;
    m_database = QSqlDatabase();
    ConnectionRegistry::instance().release(m_dataSourceName, m_connectionName,
                                           state == Connection::Broken);
    m_connectionName.clear();
}

void SqlDatabase::ensureOpen(const char *procedure)
{
    // A database file deleted under an open connection would swallow every later
    // subgroup into the removed file: the connection is made again, which makes the
    // file again.
    if (m_open && m_dialect == Dialect::SQLite && !QFileInfo::exists(m_source.filePath()))
        dropConnection(Connection::Broken);
    if (m_open)
        return;
    if (m_reconnect && openConnection())
        return;
    QString text = QStringLiteral("Not connected to the SPC database");
    if (!m_lastError.isEmpty())
        text += QStringLiteral(" (") + m_lastError + u')';
    throw ProgramError::raised(text, QLatin1String(procedure));
}

void SqlDatabase::noteFailure(const ProgramError &error)
{
    m_lastError = error.description();
    if (m_open && !serverAnswers())
        dropConnection(Connection::Broken);
}

bool SqlDatabase::serverAnswers()
{
    if (!m_database.isOpen())
        return false;
    QSqlQuery probe(m_database);
    return probe.exec(QStringLiteral("SELECT 1")) && probe.next();
}

int SqlDatabase::schemaVersion()
{
    return guarded("SqlDatabase.schemaVersion",
                   [&] { return Schema::currentVersion(m_database, m_dialect); });
}

bool SqlDatabase::loadRecord(Record &record)
{
    return guarded("SqlDatabase.loadRecord", [&] {
        const QString table = tables::recordTable(record.kind());
        const bool grouped = tables::hasGroup(record.kind());
        QString statement = grouped ? QStringLiteral("SELECT r.id, r.name, g.id, g.name FROM %1 r"
                                                     " LEFT JOIN spc_groups g ON g.id = r.group_id")
                                          .arg(table)
                                    : QStringLiteral("SELECT r.id, r.name FROM %1 r").arg(table);
        QVariantList keys;
        if (record.lookup() == Record::kLookupByName) {
            // Engineers type "housing" for "Housing": names match in any case and the
            // record keeps its stored spelling. Should two spellings have been stored
            // before, the exact one wins.
            statement += QStringLiteral(" WHERE LOWER(r.name) = LOWER(?)"
                                        " ORDER BY CASE WHEN r.name = ? THEN 0 ELSE 1 END, r.id");
            keys = {record.name(), record.name()};
        } else if (record.lookup() == Record::kLookupById) {
            statement += QStringLiteral(" WHERE r.id = ?");
            keys = {record.id()};
        } else {
            throw ProgramError::raised(
                QStringLiteral("Unknown look-up selector %1").arg(record.lookup()),
                QStringLiteral("SqlDatabase.loadRecord"));
        }
        QSqlQuery query = sql::execute(m_database, statement, keys, "SqlDatabase.loadRecord");
        if (!query.next()) {
            record.setId(0);
            record.setGroupId(0);
            record.setGroupName({});
            return false;
        }
        record.setId(query.value(0).toLongLong());
        record.setName(query.value(1).toString());
        record.setGroupId(grouped ? query.value(2).toLongLong() : 0);
        record.setGroupName(grouped ? query.value(3).toString() : QString());
        return true;
    });
}

bool SqlDatabase::loadSpecLimit(SpecLimit &limit)
{
    return guarded("SqlDatabase.loadSpecLimit", [&] {
        if (limit.partSelector() != SpecLimit::kByIdentifier ||
            limit.testSelector() != SpecLimit::kByIdentifier)
            throw ProgramError::raised(
                QStringLiteral("Specification limits are found by part and test identifier "
                               "only (selectors 1 and 1, not %1 and %2)")
                    .arg(limit.partSelector())
                    .arg(limit.testSelector()),
                QStringLiteral("SqlDatabase.loadSpecLimit"));
        QSqlQuery query =
            sql::execute(m_database,
                         QStringLiteral("SELECT limit_flags, upper_spec_limit, lower_spec_limit,"
                                        " upper_warning_limit, lower_warning_limit FROM spec_limits"
                                        " WHERE part_id = ? AND test_id = ?"),
                         {limit.partId(), limit.testId()}, "SqlDatabase.loadSpecLimit");
        if (!query.next()) {
            limit.clearLimits();
            return false;
        }
        limit.setLimits(query.value(0).toInt(), query.value(1).toDouble(),
                        query.value(2).toDouble(), query.value(3).toDouble(),
                        query.value(4).toDouble());
        return true;
    });
}

qint64 SqlDatabase::storeSubgroup(const Subgroup &subgroup)
{
    return guarded("SqlDatabase.storeSubgroup", [&] {
        const char *const procedure = "SqlDatabase.storeSubgroup";
        const SubgroupHeader &header = subgroup.header();
        if (!header.dateTime.isValid())
            throw ProgramError::raised(QStringLiteral("The subgroup has no date and time"),
                                       QLatin1String(procedure));
        // The statements outlive the transaction: a failed one is rolled back while
        // its statements still exist, so the server can release them cleanly.
        QSqlQuery findKey = sql::prepare(
            m_database, QStringLiteral("SELECT id FROM subgroups WHERE subgroup_key = ?"),
            procedure);
        QSqlQuery insertSubgroup = sql::prepare(
            m_database,
            QStringLiteral("INSERT INTO subgroups (header_flag, value_count, sample_time,"
                           " part_group, part, process_group, process, source_tag, subgroup_key)"
                           " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?) RETURNING id"),
            procedure);
        QSqlQuery insertItem = sql::prepare(
            m_database,
            QStringLiteral("INSERT INTO test_items (subgroup_id, item_order, name, kind)"
                           " VALUES (?, ?, ?, ?) RETURNING id"),
            procedure);
        QSqlQuery insertValue = sql::prepare(
            m_database,
            QStringLiteral("INSERT INTO sample_values (test_item_id, sample_number, value,"
                           " value_text) VALUES (?, ?, ?, ?)"),
            procedure);
        if (!m_database.transaction())
            throw sql::failure(m_database.lastError(), QLatin1String(procedure));
        try {
            // Checked inside the transaction: the unique index refuses a second copy that
            // another workstation might commit meanwhile.
            if (!header.key.isEmpty()) {
                sql::run(findKey, {header.key}, procedure);
                if (findKey.next()) {
                    const qint64 present = findKey.value(0).toLongLong();
                    m_database.rollback();
                    return present;
                }
            }
            sql::run(insertSubgroup,
                     {header.flag ? 1 : 0, header.valueCount, tables::timeText(header.dateTime),
                      header.partGroup, header.part, header.processGroup, header.process,
                      header.sourceTag, tables::optionalText(header.key)},
                     procedure);
            const qint64 subgroupId = tables::returnedId(insertSubgroup, procedure);
            int order = 0;
            for (const TestItem &item : subgroup.testItems()) {
                sql::run(insertItem, {subgroupId, ++order, item.name, item.kind}, procedure);
                const qint64 itemId = tables::returnedId(insertItem, procedure);
                for (const SubgroupValue &value : item.values)
                    sql::run(
                        insertValue,
                        {itemId, value.sampleNumber, value.value, tables::optionalText(value.text)},
                        procedure);
            }
            if (!m_database.commit())
                throw sql::failure(m_database.lastError(), QLatin1String(procedure));
            return subgroupId;
        } catch (...) {
            m_database.rollback();
            throw;
        }
    });
}

} // namespace qlaDatabase6

#pragma once

#include "DataSource.h"
#include "Database.h"
#include "SqlStatement.h"

#include "platform/ErrorPassing.h"

#include <QSqlDatabase>

namespace qlaDatabase6 {

// The SPC database on Qt SQL: a SQLite file on the workstation or the plant-wide
// PostgreSQL server, by the data source name. The objects of one thread that name the
// same data source share one Qt SQL connection, so a workstation holds one session of
// the server however many welders it watches.
//
// A server connection that drops (the server restarted, the network was down) is
// noticed when a statement fails and the server no longer answers; the connection is
// then closed, and the next operation tries once to connect again, so a monitor that
// runs for weeks resumes storing subgroups when the server is back.
class SqlDatabase : public Database
{
    Q_OBJECT

public:
    explicit SqlDatabase(QObject *parent = nullptr);
    ~SqlDatabase() override;

    QString dataSourceName() const override { return m_dataSourceName; }
    void setDataSourceName(const QString &dsn) override;
    bool isConnected() const override;
    bool openConnection() override;
    void closeConnection() override;
    QString lastErrorText() const override { return m_lastError; }

    int schemaVersion() override;

    bool loadRecord(Record &record) override;
    bool loadSpecLimit(SpecLimit &limit) override;
    qint64 storeSubgroup(const Subgroup &subgroup) override;

    QList<Record> listRecords(RecordKind kind, const QString &filter = {}) override;
    Record createRecord(RecordKind kind, const QString &name,
                        const QString &groupName = {}) override;
    QList<SpecLimit> listSpecLimits() override;
    void setSpecLimit(const SpecLimit &limit) override;
    bool clearSpecLimit(qint64 partId, qint64 testId) override;
    QList<StoredValue> subgroupValues(const SubgroupFilter &filter) override;
    bool hasSubgroup(const SubgroupHeader &header) override;
    ControlLimitRecord controlLimits(const QString &part, const QString &process,
                                     const QString &test) override;
    void freezeControlLimits(const ControlLimitRecord &limits) override;
    QList<ControlLimitRecord> listControlLimits() override;
    QList<ControlLimitRecord> controlLimitHistory(const QString &part, const QString &process,
                                                  const QString &test) override;

    // The name of the Qt SQL connection this object uses; empty while not connected.
    const QString &connectionName() const { return m_connectionName; }

private:
    // Runs an operation on an open connection (reconnecting once after a lost
    // connection); a failure is remembered as the last error, the connection is checked
    // and the failure passed on with the operation's name.
    template <typename Operation>
    decltype(auto) guarded(const char *procedure, Operation &&operation);
    void ensureOpen(const char *procedure);
    void noteFailure(const ProgramError &error);
    bool serverAnswers();
    // A broken connection (the server gone, the file deleted, never opened) is not
    // handed to anyone else; a sound one stays with its other users.
    enum class Connection { Sound, Broken };
    void dropConnection(Connection state);
    // Makes, opens and brings forward the schema of the connection just acquired, which
    // no other object uses yet.
    bool openNewConnection(const QString &driver);
    void fail(const QString &text);

    QString m_connectionName;
    QString m_dataSourceName;
    QString m_lastError;
    DataSource m_source;
    Dialect m_dialect = Dialect::SQLite;
    QSqlDatabase m_database;
    bool m_open = false;
    // Set by a successful connection and kept while the data source stays the same:
    // a dropped connection to it is made again on demand.
    bool m_reconnect = false;
};

template <typename Operation>
decltype(auto) SqlDatabase::guarded(const char *procedure, Operation &&operation)
{
    try {
        ensureOpen(procedure);
        return passOn(procedure, std::forward<Operation>(operation));
    } catch (const ProgramError &error) {
        noteFailure(error);
        throw;
    }
}

} // namespace qlaDatabase6

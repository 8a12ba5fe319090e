#include "SubgroupOutbox.h"

#include "SubgroupCodec.h"

#include "platform/spc/SqlStatement.h"

#include <QDir>
#include <QFileInfo>
#include <QSqlError>

#include <atomic>

namespace sql = qlaDatabase6::sql;

namespace {

std::atomic<int> g_outboxNumber{0};

// The data source filter and its two values: every entry when the name is empty.
const QString kWhereSource = QStringLiteral(" WHERE (data_source = ? OR ? = 1)");

QVariantList sourceValues(const QString &dataSourceName)
{
    return {dataSourceName, dataSourceName.isEmpty() ? 1 : 0};
}

} // namespace

SubgroupOutbox::SubgroupOutbox(QString path)
    : m_path(std::move(path))
    , m_connectionName(QStringLiteral("corvane-outbox-%1").arg(++g_outboxNumber))
{}

SubgroupOutbox::~SubgroupOutbox()
{
    if (!m_database.isValid())
        return;
    m_database.close();
    m_database = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_connectionName);
}

QString SubgroupOutbox::besideConfigurations(const QString &configurationsPath)
{
    const QFileInfo configurations(configurationsPath);
    return configurations.dir().filePath(configurations.completeBaseName() +
                                         QStringLiteral(".outbox"));
}

bool SubgroupOutbox::open(bool create, const char *procedure)
{
    if (m_database.isOpen())
        return true;
    if (!create && !QFileInfo::exists(m_path))
        return false;
    if (!m_database.isValid()) {
        m_database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connectionName);
        m_database.setDatabaseName(m_path);
        m_database.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=10000"));
    }
    if (!m_database.open())
        throw sql::failure(m_database.lastError(), QLatin1String(procedure));
    sql::executeDirect(m_database,
                       QStringLiteral("CREATE TABLE IF NOT EXISTS outbox ("
                                      " id INTEGER PRIMARY KEY AUTOINCREMENT,"
                                      " data_source TEXT NOT NULL,"
                                      " subgroup_key TEXT NOT NULL UNIQUE,"
                                      " queued_at TEXT NOT NULL,"
                                      " subgroup TEXT NOT NULL)"),
                       procedure);
    return true;
}

void SubgroupOutbox::enqueue(const QString &dataSourceName, const qlaDatabase6::Subgroup &subgroup,
                             const QDateTime &queuedAt)
{
    const char *const procedure = "SubgroupOutbox.enqueue";
    open(true, procedure);
    // A subgroup queued again (its forwarding failed half-way) keeps its place.
    sql::execute(m_database,
                 QStringLiteral("INSERT OR IGNORE INTO outbox (data_source, subgroup_key,"
                                " queued_at, subgroup) VALUES (?, ?, ?, ?)"),
                 {dataSourceName, subgroup.header().key, queuedAt.toString(Qt::ISODateWithMs),
                  QString::fromUtf8(SubgroupCodec::encode(subgroup))},
                 procedure);
}

int SubgroupOutbox::count(const QString &dataSourceName)
{
    const char *const procedure = "SubgroupOutbox.count";
    if (!open(false, procedure))
        return 0;
    QSqlQuery query =
        sql::execute(m_database, QStringLiteral("SELECT COUNT(*) FROM outbox") + kWhereSource,
                     sourceValues(dataSourceName), procedure);
    return query.next() ? query.value(0).toInt() : 0;
}

QList<OutboxEntry> SubgroupOutbox::entries(const QString &dataSourceName, int limit)
{
    const char *const procedure = "SubgroupOutbox.entries";
    QList<OutboxEntry> result;
    if (!open(false, procedure))
        return result;
    QSqlQuery query =
        sql::execute(m_database,
                     QStringLiteral("SELECT id, data_source, queued_at, subgroup FROM outbox") +
                         kWhereSource + QStringLiteral(" ORDER BY id LIMIT ?"),
                     sourceValues(dataSourceName) << limit, procedure);
    while (query.next()) {
        result.append({query.value(0).toLongLong(), query.value(1).toString(),
                       QDateTime::fromString(query.value(2).toString(), Qt::ISODateWithMs),
                       SubgroupCodec::decode(query.value(3).toString().toUtf8())});
    }
    return result;
}

void SubgroupOutbox::remove(qint64 id)
{
    const char *const procedure = "SubgroupOutbox.remove";
    open(true, procedure);
    sql::execute(m_database, QStringLiteral("DELETE FROM outbox WHERE id = ?"), {id}, procedure);
}

int SubgroupOutbox::discard(const QString &dataSourceName)
{
    const char *const procedure = "SubgroupOutbox.discard";
    if (!open(false, procedure))
        return 0;
    QSqlQuery query = sql::execute(m_database, QStringLiteral("DELETE FROM outbox") + kWhereSource,
                                   sourceValues(dataSourceName), procedure);
    return query.numRowsAffected();
}

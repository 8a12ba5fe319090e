#pragma once

#include "platform/spc/Subgroup.h"

#include <QDateTime>
#include <QList>
#include <QSqlDatabase>
#include <QString>

// One subgroup waiting for its SPC database.
struct OutboxEntry
{
    qint64 id = 0;
    QString dataSourceName;
    QDateTime queuedAt;
    qlaDatabase6::Subgroup subgroup;
};

// The workstation's outbox: subgroups that could not be stored in their SPC database
// (the server was down, the network away, the database file's folder not there) wait
// here, in a SQLite file beside the configurations file, until they are forwarded.
// Every write is its own committed transaction, so a crash or a power cut loses no
// subgroup that was queued. Entries keep the order in which they were queued.
//
// Failures are thrown as a ProgramError (source "SubgroupOutbox.<operation>").
class SubgroupOutbox
{
public:
    explicit SubgroupOutbox(QString path);
    ~SubgroupOutbox();
    SubgroupOutbox(const SubgroupOutbox &) = delete;
    SubgroupOutbox &operator=(const SubgroupOutbox &) = delete;

    // The outbox file a program keeps beside its configurations file.
    static QString besideConfigurations(const QString &configurationsPath);

    const QString &path() const { return m_path; }

    void enqueue(const QString &dataSourceName, const qlaDatabase6::Subgroup &subgroup,
                 const QDateTime &queuedAt);
    // The number of subgroups waiting for a data source; for every one when it is
    // empty. A missing outbox file holds none and is not made.
    int count(const QString &dataSourceName = {});
    // The waiting subgroups, oldest first, at most limit of them (all when negative).
    QList<OutboxEntry> entries(const QString &dataSourceName = {}, int limit = -1);
    // Takes one entry out, after its subgroup was stored.
    void remove(qint64 id);
    // Drops the subgroups waiting for a data source (every one when it is empty) and
    // returns how many there were.
    int discard(const QString &dataSourceName = {});

private:
    // Opens the file; false when it does not exist and create is false.
    bool open(bool create, const char *procedure);

    QString m_path;
    QString m_connectionName;
    QSqlDatabase m_database;
};

#pragma once

#include <QString>
#include <QTemporaryDir>

// A PostgreSQL server of one test's own, in a temporary folder on a loopback port, that
// the test stops and starts as a plant's server goes down and comes back. It trusts
// every local connection. Run as root, the server runs as the postgres user.
class PostgresServer
{
public:
    ~PostgresServer();

    // Makes the cluster; false when no server is installed or it cannot be made.
    bool create();
    bool start();
    bool stop();
    // postgresql://postgres@127.0.0.1:PORT/postgres
    QString dsn() const;

private:
    bool run(const QString &tool, const QStringList &arguments);

    QTemporaryDir m_folder;
    QString m_bin;
    int m_port = 0;
    bool m_running = false;
};

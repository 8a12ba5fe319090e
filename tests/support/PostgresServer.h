#pragma once

#include <QDir>
#include <QProcess>
#include <QTcpServer>
#include <QTemporaryDir>

// A PostgreSQL server of one test's own on a loopback port, trusting local connections,
// that the test stops and starts as a plant's server goes down and comes back. Run as
// root, the server runs as the postgres user (initdb refuses root).
class PostgresServer
{
public:
    ~PostgresServer() { stop(); }

    // Makes the cluster; false when no server is installed.
    bool create()
    {
        const QStringList versions =
            QDir("/usr/lib/postgresql").entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        // A loopback port that is free now, rather than one derived from the process id,
        // which another run's server or a client's outgoing connection may hold.
        QTcpServer probe;
        if (!probe.listen(QHostAddress::LocalHost, 0))
            return false;
        m_port = probe.serverPort();
        probe.close();
        QProcess::execute("chown", {"postgres", m_folder.path()});
        return !versions.isEmpty() &&
               run("/usr/lib/postgresql/" + versions.last() + "/bin/initdb",
                   {"-D", m_folder.filePath("data"), "-U", "postgres", "--auth=trust"});
    }
    bool start()
    {
        return m_running = pgCtl({"-l", m_folder.filePath("log"), "-o",
                                  QStringLiteral("-p %1 -k %2 -c listen_addresses=127.0.0.1")
                                      .arg(m_port)
                                      .arg(m_folder.path()),
                                  "start"});
    }
    bool stop() { return !m_running || !(m_running = !pgCtl({"-m", "fast", "stop"})); }
    QString dsn() const
    {
        return QStringLiteral("postgresql://postgres@127.0.0.1:%1/postgres").arg(m_port);
    }

private:
    bool pgCtl(const QStringList &arguments)
    {
        return run(m_bin + "/pg_ctl",
                   QStringList{"-D", m_folder.filePath("data"), "-w"} + arguments);
    }
    bool run(const QString &program, const QStringList &arguments)
    {
        m_bin = program.left(program.lastIndexOf(u'/'));
        QProcess process;
        process.setStandardOutputFile(QProcess::nullDevice());
        process.start("runuser", QStringList{"-u", "postgres", "--", program} + arguments);
        return process.waitForFinished(60000) && process.exitCode() == 0;
    }

    QTemporaryDir m_folder;
    QString m_bin;
    int m_port = 0;
    bool m_running = false;
};

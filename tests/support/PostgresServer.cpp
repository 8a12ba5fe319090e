#include "PostgresServer.h"

#include <QDir>
#include <QProcess>
#include <QRandomGenerator>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

PostgresServer::~PostgresServer()
{
    if (m_running)
        stop();
}

bool PostgresServer::run(const QString &tool, const QStringList &arguments)
{
    QStringList command = QStringList{m_bin + u'/' + tool} + arguments;
#ifdef Q_OS_UNIX
    // initdb refuses to run as root.
    if (::geteuid() == 0)
        command = QStringList{QStringLiteral("runuser"), QStringLiteral("-u"),
                              QStringLiteral("postgres"), QStringLiteral("--")} +
                  command;
#endif
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(command.takeFirst(), command);
    return process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit &&
           process.exitCode() == 0;
}

bool PostgresServer::create()
{
    const QStringList versions =
        QDir(QStringLiteral("/usr/lib/postgresql")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    if (versions.isEmpty() || !m_folder.isValid())
        return false;
    m_bin = QStringLiteral("/usr/lib/postgresql/%1/bin").arg(versions.last());
    QProcess::execute(QStringLiteral("chown"), {QStringLiteral("postgres"), m_folder.path()});
    return run(QStringLiteral("initdb"), {"-D", m_folder.filePath("data"), "-U", "postgres",
                                          "--auth=trust", "--no-locale", "-E", "UTF8"});
}

bool PostgresServer::start()
{
    for (int attempt = 0; attempt < 5 && !m_running; ++attempt) {
        if (m_port == 0 || attempt > 0)
            m_port = 20000 + int(QRandomGenerator::global()->bounded(40000));
        m_running =
            run(QStringLiteral("pg_ctl"),
                {"-D", m_folder.filePath("data"), "-l", m_folder.filePath("server.log"), "-w", "-o",
                 QStringLiteral("-p %1 -k %2 -c listen_addresses=127.0.0.1 -c fsync=off")
                     .arg(m_port)
                     .arg(m_folder.path()),
                 "start"});
    }
    return m_running;
}

bool PostgresServer::stop()
{
    m_running = !run(QStringLiteral("pg_ctl"),
                     {"-D", m_folder.filePath("data"), "-m", "fast", "-w", "stop"});
    return !m_running;
}

QString PostgresServer::dsn() const
{
    return QStringLiteral("postgresql://postgres@127.0.0.1:%1/postgres").arg(m_port);
}

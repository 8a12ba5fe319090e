// The headless monitor under a service manager: the notifications it sends over the
// manager's datagram socket, and the unit file that installs it.

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <cstring>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

// The manager's end: a datagram socket that collects what the service says.
class NotifySocket
{
public:
    explicit NotifySocket(const QString &path)
        : m_fd(::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0))
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const QByteArray bytes = QFile::encodeName(path);
        std::memcpy(address.sun_path, bytes.constData(), size_t(bytes.size()));
        m_bound = ::bind(m_fd, reinterpret_cast<sockaddr *>(&address), sizeof(address)) == 0;
    }
    ~NotifySocket() { ::close(m_fd); }

    bool isBound() const { return m_bound; }

    // Every message received so far, in order.
    QStringList messages()
    {
        char buffer[4096];
        ssize_t length = 0;
        while ((length = ::recv(m_fd, buffer, sizeof(buffer), 0)) > 0)
            m_messages << QString::fromUtf8(buffer, int(length));
        return m_messages;
    }

private:
    int m_fd;
    bool m_bound = false;
    QStringList m_messages;
};

} // namespace

class TestService : public QObject
{
    Q_OBJECT

private slots:
    void readyWatchdogAndStopping()
    {
        QTemporaryDir folder;
        NotifySocket manager(folder.filePath(QStringLiteral("notify")));
        QVERIFY(manager.isBound());

        QProcess monitor;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("NOTIFY_SOCKET"), folder.filePath(QStringLiteral("notify")));
        env.insert(QStringLiteral("WATCHDOG_USEC"), QStringLiteral("400000"));
        env.remove(QStringLiteral("WATCHDOG_PID"));
        env.insert(QStringLiteral("XDG_RUNTIME_DIR"), folder.path());
        env.insert(QStringLiteral("CORVANE_SETTINGS_FILE"),
                   folder.filePath(QStringLiteral("settings.ini")));
        monitor.setProcessEnvironment(env);
        monitor.start(QStringLiteral(CORVANE_MONITOR_EXE),
                      {QStringLiteral("--headless"), QStringLiteral("--data-dir"), folder.path()});
        QVERIFY(monitor.waitForStarted());

        // READY once the configurations are loaded, then the watchdog every 200 ms.
        QTRY_VERIFY_WITH_TIMEOUT(
            manager.messages().filter(QStringLiteral("WATCHDOG=1")).size() >= 3, 10000);
        const QStringList said = manager.messages();
        QVERIFY2(said.first().startsWith(QStringLiteral("READY=1\nSTATUS=Watching 0 welder")),
                 qPrintable(said.first()));

        monitor.terminate();
        QVERIFY(monitor.waitForFinished(10000));
        QCOMPARE(monitor.exitCode(), 0);
        QCOMPARE(manager.messages().last(), QStringLiteral("STOPPING=1"));
    }

    void unitFileVerifies()
    {
        const QString analyze = QStandardPaths::findExecutable(QStringLiteral("systemd-analyze"));
        if (analyze.isEmpty())
            QSKIP("systemd-analyze is not installed");
        QProcess verify;
        verify.start(analyze, {QStringLiteral("verify"), QStringLiteral(CORVANE_TEST_UNIT)});
        QVERIFY(verify.waitForFinished(60000));
        const QByteArray said = verify.readAllStandardError() + verify.readAllStandardOutput();
        QVERIFY2(verify.exitCode() == 0, said.constData());
        QVERIFY2(!said.contains("corvane-monitor.service"), said.constData());
    }
};

QTEST_GUILESS_MAIN(TestService)
#include "tst_service.moc"

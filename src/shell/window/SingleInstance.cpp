#include "SingleInstance.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QThread>

namespace {

constexpr int kAnswerTimeoutMs = 1000;

QString userName()
{
    QString name = qEnvironmentVariable("USER");
    if (name.isEmpty())
        name = qEnvironmentVariable("USERNAME");
    return name;
}

// A Unix socket path is limited to about a hundred bytes; a longer one falls back to a
// bare name, which Qt places in the temporary folder.
QString serverNameIn(const QString &folder, const QString &key)
{
#ifdef Q_OS_WIN
    Q_UNUSED(folder)
    return key;
#else
    const QString path = QDir(folder).filePath(key + QStringLiteral(".socket"));
    return path.toLocal8Bit().size() < 100 ? path : key;
#endif
}

} // namespace

SingleInstance::SingleInstance(const QString &applicationTitle, const QString &dataFolder,
                               const QString &folder, QObject *parent)
    : QObject(parent)
    , m_lockPath(
          QDir(folder.isEmpty() ? runtimeFolder() : folder)
              .filePath(keyFor(applicationTitle, dataFolder, userName()) + QStringLiteral(".lock")))
    , m_serverName(serverNameIn(folder.isEmpty() ? runtimeFolder() : folder,
                                keyFor(applicationTitle, dataFolder, userName())))
    , m_lock(m_lockPath)
{
    // Only a dead owner makes the lock stale, never its age: a monitor runs for weeks.
    m_lock.setStaleLockTime(0);
}

SingleInstance::~SingleInstance()
{
    if (m_server)
        m_server->close();
}

QString SingleInstance::keyFor(const QString &applicationTitle, const QString &dataFolder,
                               const QString &userName)
{
    // "data" and "data/" are one folder.
    const QString folder = QDir::cleanPath(QDir(dataFolder).absolutePath());
    const QByteArray digest = QCryptographicHash::hash((applicationTitle + u'\n' + folder).toUtf8(),
                                                       QCryptographicHash::Sha1)
                                  .toHex();
    QString user = userName;
    for (QChar &c : user) {
        if (!c.isLetterOrNumber())
            c = u'_';
    }
    return QStringLiteral("corvane-monitor-%1-%2").arg(user, QLatin1String(digest.left(12)));
}

QString SingleInstance::runtimeFolder()
{
    const QString runtime = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    return runtime.isEmpty() ? QDir::tempPath() : runtime;
}

bool SingleInstance::acquire()
{
    if (!m_lock.tryLock(0))
        return false;
    // The lock is ours, so a socket of that name is a dead instance's leftover.
    QLocalServer::removeServer(m_serverName);
    m_server = std::make_unique<QLocalServer>();
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    connect(m_server.get(), &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *socket = m_server->nextPendingConnection())
            answer(socket);
    });
    // Without the socket this instance still runs; a second start then ends quietly
    // after its attempts to reach it.
    if (!m_server->listen(m_serverName))
        qWarning("corvane-monitor: cannot listen on %s: %s", qPrintable(m_serverName),
                 qPrintable(m_server->errorString()));
    return true;
}

void SingleInstance::answer(QLocalSocket *socket)
{
    connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
        if (!socket->canReadLine())
            return;
        const QByteArray request = socket->readLine().trimmed();
        if (request == kActivate) {
            socket->write("ok\n");
            socket->flush();
            emit activationRequested();
        }
        socket->disconnectFromServer();
    });
}

bool SingleInstance::activateRunningInstance(int timeoutMs)
{
    const QDeadlineTimer deadline(timeoutMs);
    while (!deadline.hasExpired()) {
        QLocalSocket socket;
        socket.connectToServer(m_serverName);
        if (socket.waitForConnected(kAnswerTimeoutMs)) {
            socket.write(QByteArray(kActivate) + '\n');
            if (!socket.waitForBytesWritten(kAnswerTimeoutMs))
                return false;
            while (!socket.canReadLine()) {
                if (!socket.waitForReadyRead(kAnswerTimeoutMs))
                    return false;
            }
            return socket.readLine().trimmed() == "ok";
        }
        // The first instance holds the lock but may not listen yet.
        QThread::msleep(50);
    }
    return false;
}

#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <QObject>
#include <QString>

#include <memory>

// One running instance per desktop user, application title and data folder: a headless
// service on a folder of its own runs beside the desktop's instance. The first start takes
// a lock file in the user's runtime folder and listens on a local socket beside it; a
// second start finds the lock taken, connects, asks the first to show its window
// ("activate") and ends without a window of its own. The lock is released by the
// system when the first instance dies, so a crash never blocks the next start; the
// socket it left behind is removed by the next instance that takes the lock.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    static constexpr const char *kActivate = "activate";

    // folder: where the lock and the socket live; empty for the user's runtime folder
    // (the temporary folder when the platform has none).
    SingleInstance(const QString &applicationTitle, const QString &dataFolder,
                   const QString &folder = {}, QObject *parent = nullptr);
    ~SingleInstance() override;

    // True when this is the first instance: it holds the lock and listens for later
    // starts. False when another instance holds it.
    bool acquire();
    // Asks the running instance to show its window. True when it confirmed within
    // timeoutMs; a first instance that is still starting is given that long to listen.
    bool activateRunningInstance(int timeoutMs = 5000);

    const QString &lockPath() const { return m_lockPath; }
    const QString &serverName() const { return m_serverName; }

    // The name of the lock and the socket: program, user and a digest of the title and the
    // data folder, so that an OEM build with another title, or a run on another data
    // folder, runs beside this one.
    static QString keyFor(const QString &applicationTitle, const QString &dataFolder,
                          const QString &userName);
    static QString runtimeFolder();

signals:
    // A later start asked this instance to show itself.
    void activationRequested();

private:
    void answer(QLocalSocket *socket);

    QString m_lockPath;
    QString m_serverName;
    QLockFile m_lock;
    std::unique_ptr<QLocalServer> m_server;
};

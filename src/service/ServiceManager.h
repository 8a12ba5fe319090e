#pragma once

#include <QObject>
#include <QTimer>

// The headless monitor's side of the system's service manager: it says when the
// configurations are loaded and the welders are being watched (READY), keeps saying that
// the event loop runs (WATCHDOG, from a timer at half the manager's watchdog interval, so
// a hung loop gets the service restarted), and writes the event log's lines to the
// journal. Outside a service manager, or in a build without its library, every call does
// nothing.
class ServiceManager : public QObject
{
    Q_OBJECT

public:
    explicit ServiceManager(QObject *parent = nullptr);

    // True when the process was started by a service manager that listens for it.
    bool isManaged() const { return m_managed; }

    // Readiness, with a one-line status that systemctl status shows.
    void notifyReady(const QString &status);
    // A reload has started or is done; the manager waits for the second call.
    void notifyReloading();
    void notifyStopping();

    // A line of the event log, at warning priority, under the program's name.
    static void writeJournal(const QString &line);

    // The watchdog interval the manager asked for, in milliseconds; 0 without one.
    int watchdogIntervalMs() const { return m_watchdogMs; }

private:
    void notify(const QByteArray &state);

    bool m_managed = false;
    int m_watchdogMs = 0;
    QTimer m_watchdog;
};

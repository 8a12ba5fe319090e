#include "ServiceManager.h"

#include <QLoggingCategory>

#ifdef CORVANE_HAVE_SYSTEMD
#include <systemd/sd-daemon.h>
#include <systemd/sd-journal.h>
#endif

Q_LOGGING_CATEGORY(lcService, "corvane.service")

ServiceManager::ServiceManager(QObject *parent)
    : QObject(parent)
{
#ifdef CORVANE_HAVE_SYSTEMD
    m_managed = qEnvironmentVariableIsSet("NOTIFY_SOCKET");
    uint64_t watchdogUs = 0;
    if (m_managed && sd_watchdog_enabled(0, &watchdogUs) > 0 && watchdogUs > 0)
        m_watchdogMs = int(qMax<uint64_t>(watchdogUs / 2000, 1));
#endif
    if (m_watchdogMs > 0) {
        m_watchdog.setInterval(m_watchdogMs);
        connect(&m_watchdog, &QTimer::timeout, this, [this] { notify("WATCHDOG=1"); });
        m_watchdog.start();
        qCInfo(lcService) << "watchdog every" << m_watchdogMs << "ms";
    }
}

void ServiceManager::notifyReady(const QString &status)
{
    notify("READY=1\nSTATUS=" + status.toUtf8());
}

void ServiceManager::notifyReloading()
{
    notify("RELOADING=1");
}

void ServiceManager::notifyStopping()
{
    m_watchdog.stop();
    notify("STOPPING=1");
}

void ServiceManager::writeJournal(const QString &line)
{
#ifdef CORVANE_HAVE_SYSTEMD
    // The event log's own line, tabs and all, without its CR LF.
    sd_journal_print(LOG_WARNING, "%s", line.trimmed().toUtf8().constData());
#else
    Q_UNUSED(line)
#endif
}

void ServiceManager::notify(const QByteArray &state)
{
#ifdef CORVANE_HAVE_SYSTEMD
    if (m_managed && sd_notify(0, state.constData()) < 0)
        qCWarning(lcService) << "the service manager did not take" << state;
#else
    Q_UNUSED(state)
#endif
}

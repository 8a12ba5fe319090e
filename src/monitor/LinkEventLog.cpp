#include "LinkEventLog.h"

#include "platform/Clock.h"
#include "platform/EventLog.h"

LinkEventLog::LinkEventLog(EventLog &log, const Clock &clock)
    : m_log(log)
    , m_clock(clock)
{}

void LinkEventLog::setLink(const QString &configurationName, const QString &address)
{
    m_area = configurationName + QStringLiteral(" (") + address + u')';
}

void LinkEventLog::socketError(qint32 number, const QString &description, qint32 statusCode)
{
    failure(QStringLiteral("WinSockError"), number, description,
            QStringLiteral("SCODE: ") + QString::number(statusCode));
}

void LinkEventLog::serialLost()
{
    failure(QStringLiteral("Serial Port Lost"), 0,
            QStringLiteral("The serial device went away; it is opened again when it is back"),
            QString());
}

void LinkEventLog::failure(const QString &message, qint32 number, const QString &description,
                           const QString &detail)
{
    const QDateTime now = m_clock.now();
    const bool same = m_streak && m_streak->message == message && m_streak->number == number &&
                      m_streak->description == description && m_streak->detail == detail;
    if (!same) {
        m_streak = Streak{message, number, description, detail, now, 0, 1};
        write(message, number, description, detail);
        return;
    }
    ++m_streak->attempts;
    ++m_streak->attemptsSinceWritten;
    if (m_streak->lastWritten.secsTo(now) < kRepeatSeconds)
        return;
    write(message, number, description,
          detail + QStringLiteral(" (repeated %1 times since the last line)")
                       .arg(m_streak->attemptsSinceWritten));
    m_streak->lastWritten = now;
    m_streak->attemptsSinceWritten = 0;
}

void LinkEventLog::restored()
{
    if (!m_streak)
        return;
    const qint64 attempts = m_streak->attempts;
    m_streak.reset();
    write(QStringLiteral("Link Restored"), 0,
          QStringLiteral("Connected again after %1 failed attempt(s)").arg(attempts), QString());
}

void LinkEventLog::write(const QString &message, qint32 number, const QString &description,
                         const QString &detail)
{
    m_log.WriteEventLog(m_area, message, number, description, detail);
}

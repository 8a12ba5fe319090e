#include "EventLog.h"

#include "Clock.h"
#include "FileErrors.h"
#include "RegionalFormat.h"

#include <QFile>

EventLog::EventLog(QString path, const Clock &clock)
    : m_path(std::move(path))
    , m_clock(clock)
{
}

void EventLog::WriteEventLog(const QString &area, const QString &message, qint32 number,
                             const QString &description, const QString &detail)
{
    const QString line = RegionalFormat().dateTime(m_clock.now()) + u'\t' + area + u'\t'
        + message + u'\t' + QString::number(number) + u'\t' + description + u'\t' + detail
        + QStringLiteral("\r\n");
    if (m_mirror)
        m_mirror(line);
    QFile log(m_path);
    if (!log.open(QIODevice::Append))
        throw fileError(log, QStringLiteral("EventLog.WriteEventLog"));
    const QByteArray bytes = line.toUtf8();
    if (log.write(bytes) != bytes.size() || !log.flush())
        throw fileError(log, QStringLiteral("EventLog.WriteEventLog"));
}

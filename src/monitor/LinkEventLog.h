#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

class Clock;
class EventLog;

// The event-log lines of one monitor's link. Every line names the configuration and its
// address. A failure that repeats unchanged (a welder switched off refuses every
// attempt) is written once, then once every ten minutes with the number of attempts,
// and a line follows when the link is back.
class LinkEventLog
{
public:
    static constexpr qint64 kRepeatSeconds = 10 * 60;

    LinkEventLog(EventLog &log, const Clock &clock);

    void setLink(const QString &configurationName, const QString &address);

    // A socket failure, with the status code that belongs to its number.
    void socketError(qint32 number, const QString &description, qint32 statusCode);
    // The serial device went away while collecting.
    void serialLost();
    // The link is connected again: says so when failures were written since.
    void restored();

private:
    struct Streak
    {
        QString message;
        qint32 number = 0;
        QString description;
        QString detail;
        QDateTime lastWritten;
        qint64 attemptsSinceWritten = 0;
        qint64 attempts = 0;
    };

    void failure(const QString &message, qint32 number, const QString &description,
                 const QString &detail);
    void write(const QString &message, qint32 number, const QString &description,
               const QString &detail);

    EventLog &m_log;
    const Clock &m_clock;
    QString m_area;
    std::optional<Streak> m_streak;
};

#pragma once

#include <QString>

#include <functional>

class Clock;

// The program's event log: failures of background work that no user waits for (socket
// errors of a link, data log failures). One TAB-separated line per entry, ended by
// CR LF: date and time, area, message, error number, description, detail. Nothing is
// escaped. The file is opened and closed for every line, and the log has no error
// handler of its own: a failure to write it is thrown to the caller.
class EventLog
{
public:
    EventLog(QString path, const Clock &clock);

    void WriteEventLog(const QString &area, const QString &message, qint32 number,
                       const QString &description, const QString &detail);

    const QString &path() const { return m_path; }

    // Also hands every line to mirror (a service's journal), before it is written.
    void setMirror(std::function<void(const QString &line)> mirror)
    {
        m_mirror = std::move(mirror);
    }

private:
    QString m_path;
    std::function<void(const QString &line)> m_mirror;
    const Clock &m_clock;
};

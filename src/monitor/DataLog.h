#pragma once

#include <QString>

class ErrorReport;
class QFile;
class EventLog;
class qlxLanguage;

// The data log of a monitor: a text file with one header line and one tab-separated
// line per weld, each ended by CR LF. The file is opened and closed for every line, so
// other programs can read it between welds. Every line is whole: it is written in one
// write, a write that the disk refuses is taken back, and a line left unfinished (by a
// full disk or a crash) is cut away before the next one is appended, so every line has
// all its fields. A file that cannot be opened or written costs one event-log line and
// no weld: processing goes on and the next weld tries again.
class DataLog
{
public:
    DataLog(EventLog &eventLog, ErrorReport &errors);

    // Writes the header line (the translated column captions) when logging is enabled,
    // a file is named and it is missing or empty.
    void InitializeDataLogging(bool enabled, const QString &fileName, const qlxLanguage &language);

    // Appends line and CR LF to the file, creating it when missing. Returns false when
    // the line could not be written (the event log then holds the reason).
    bool AppendFile(const QString &fileName, const QString &line);

private:
    // Cuts an unfinished last line; returns the file's size afterwards, -1 on failure.
    static qint64 cutToLastCompleteLine(QFile &file);
    void logFailure(const QString &message, qint32 number, const QString &description,
                    const QString &fileName);

    EventLog &m_eventLog;
    ErrorReport &m_errors;
};

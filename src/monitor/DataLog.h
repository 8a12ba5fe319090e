#pragma once

#include <QString>

class ErrorReport;
class EventLog;
class qlxLanguage;

// The data log of a monitor: a text file with one header line and one tab-separated
// line per weld, each ended by CR LF. The file is opened and closed for every line, so
// other programs can read it between welds, and it is never truncated. A file that
// cannot be opened or written costs one event-log line and no weld: processing goes on
// and the next weld tries again.
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
    void logFailure(const QString &message, qint32 number, const QString &description,
                    const QString &fileName);

    EventLog &m_eventLog;
    ErrorReport &m_errors;
};

#pragma once

#include "CorvaneFUN26.h"

#include <QString>

#include <optional>

class RegionalFormat;

// Writes the data-log line of weld records: the 39 values joined by tabs, integers in
// decimal, doubles in the regional general form, the acquired time in the regional date
// and time. The line is built in one buffer that is kept from record to record, and the
// time text is worked out once per second, since welds of the same second share it.
class RecordFormatter
{
public:
    explicit RecordFormatter(const RegionalFormat &format);

    // The line of record; valid until the next call.
    const QString &format(const CorvaneFUN26 &record);

private:
    void appendDateTime(const QDateTime &time);
    void appendInteger(qint64 value);
    void appendReal(double value);

    const RegionalFormat &m_format;
    QString m_line;
    bool m_timeKnown = false;
    std::optional<qint64> m_timeSecond; // none for an empty time
    QString m_timeText;
};

#pragma once

#include "protocol/AlarmCodes.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <vector>

class qlxLanguage;

// The alarms list of a monitor: one line per alarm of every weld since collection
// started, the newest on top. A monitor may run for weeks and collect millions of
// lines, so each line is kept as its cycle count and the index of its (shared) alarm
// text, and the joined text is built only when someone reads it: adding a line costs
// the same after a million lines as after the first.
class AlarmList
{
public:
    // Adds one line per set bit whose alarm text is not empty, bit 0 first, so that the
    // highest bit of a word ends up on top. Every line counts one alarm; a count past
    // the largest signed 32-bit number fails with an overflow and adds no further line.
    // Returns the number of lines added.
    int AddAlarmItems(qint32 cycleCount, qint32 alarmBits, const AlarmTable &alarmTexts,
                      const qlxLanguage &language);

    // Adds one line of a text of its own (already translated), counted as one alarm.
    void AddTextItem(qint32 cycleCount, const QString &text);

    void clear();

    qint32 totalAlarms() const { return m_totalAlarms; }
    qsizetype lineCount() const { return qsizetype(m_lines.size()); }
    // The line at position 0 (top, newest) to lineCount() - 1, without its CR LF.
    QString line(qsizetype position) const;
    // The whole list as shown: every line followed by CR LF, newest first.
    QString text() const;

private:
    struct Line
    {
        qint32 cycleCount;
        qint32 textIndex;
    };

    qint32 internText(const QString &text);

    std::vector<Line> m_lines; // oldest first
    QStringList m_texts;
    QHash<QString, qint32> m_textIndex;
    qint32 m_totalAlarms = 0;
};

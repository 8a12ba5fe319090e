#pragma once

#include "ErrorReport.h"

#include <QString>

class Clock;

// Keeps every reported failure as one line in the error report's own log file
// (TAB-separated: time, program, location, number, description, source), and echoes it
// on standard error when asked to (headless runs). Never raises: a log that cannot be
// written must not take the reporting procedure down with it.
class LoggedErrorReport : public ErrorReport
{
public:
    LoggedErrorReport(QString logFilePath, QString programName, const Clock &clock,
                      bool echoToStandardError);

    void Show(const QString &location, qint32 number, const QString &description,
              const QString &source) override;

    const QString &logFilePath() const { return m_logFilePath; }
    const QString &programName() const { return m_programName; }

private:
    QString m_logFilePath;
    QString m_programName;
    const Clock &m_clock;
    bool m_echoToStandardError;
};

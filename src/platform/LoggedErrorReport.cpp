#include "LoggedErrorReport.h"

#include "Clock.h"

#include <QFile>
#include "RegionalFormat.h"

#include <cstdio>

LoggedErrorReport::LoggedErrorReport(QString logFilePath, QString programName,
                                     const Clock &clock, bool echoToStandardError)
    : m_logFilePath(std::move(logFilePath))
    , m_programName(std::move(programName))
    , m_clock(clock)
    , m_echoToStandardError(echoToStandardError)
{
}

void LoggedErrorReport::Show(const QString &location, qint32 number,
                             const QString &description, const QString &source)
{
    const QString line = RegionalFormat().dateTime(m_clock.now()) + u'\t'
        + m_programName + u'\t' + location + u'\t' + QString::number(number) + u'\t'
        + description + u'\t' + source;
    if (m_echoToStandardError)
        std::fprintf(stderr, "%s\n", qPrintable(line));
    if (m_logFilePath.isEmpty())
        return;
    QFile log(m_logFilePath);
    if (log.open(QIODevice::Append))
        log.write((line + QStringLiteral("\r\n")).toUtf8());
}

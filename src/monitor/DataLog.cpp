#include "DataLog.h"

#include "platform/ErrorPassing.h"
#include "platform/EventLog.h"
#include "platform/FileErrors.h"
#include "protocol/CorvaneFUN26.h"

#include <QFile>
#include <QFileInfo>

DataLog::DataLog(EventLog &eventLog, ErrorReport &errors)
    : m_eventLog(eventLog)
    , m_errors(errors)
{}

void DataLog::InitializeDataLogging(bool enabled, const QString &fileName,
                                    const qlxLanguage &language)
{
    if (!enabled || fileName.isEmpty())
        return;
    const QFileInfo info(fileName);
    if (info.exists() && info.size() > 0)
        return;
    AppendFile(fileName, CorvaneFUN26::HeaderRecord(language));
}

bool DataLog::AppendFile(const QString &fileName, const QString &line)
{
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append)) {
        const ProgramError error = fileError(file, QStringLiteral("CorvaneUsw.AppendFile"));
        logFailure(QStringLiteral("Data Log Open"), error.number(), error.description(), fileName);
        return false;
    }
    const QByteArray bytes = (line + QStringLiteral("\r\n")).toUtf8();
    if (file.write(bytes) != bytes.size() || !file.flush()) {
        const ProgramError error = fileError(file, QStringLiteral("CorvaneUsw.AppendFile"));
        logFailure(QStringLiteral("Data Log Write"), error.number(), error.description(), fileName);
        return false;
    }
    return true;
}

void DataLog::logFailure(const QString &message, qint32 number, const QString &description,
                         const QString &fileName)
{
    // The event log has no error handler of its own. When it cannot be written either,
    // the failure is shown through the error report, so that weld processing still goes on.
    reportFailures(m_errors, "CorvaneUsw.AppendFile", [&] {
        m_eventLog.WriteEventLog(QStringLiteral("Main"), message, number, description, fileName);
    });
}

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
    // Unbuffered: the whole line goes to the file in one write, so a reader never sees
    // half of it unless the disk refuses the rest.
    if (!file.open(QIODevice::ReadWrite | QIODevice::Append | QIODevice::Unbuffered)) {
        const ProgramError error = fileError(file, QStringLiteral("CorvaneUsw.AppendFile"));
        logFailure(QStringLiteral("Data Log Open"), error.number(), error.description(), fileName);
        return false;
    }
    const QByteArray bytes = (line + QStringLiteral("\r\n")).toUtf8();
    const qint64 whole = cutToLastCompleteLine(file);
    if (whole < 0 || !file.seek(whole) || file.write(bytes) != bytes.size()) {
        const ProgramError error = fileError(file, QStringLiteral("CorvaneUsw.AppendFile"));
        // What did reach the file of this line is taken back at once; should that fail
        // too, the next weld cuts it before it writes.
        if (whole >= 0)
            file.resize(whole);
        logFailure(QStringLiteral("Data Log Write"), error.number(), error.description(), fileName);
        return false;
    }
    return true;
}

qint64 DataLog::cutToLastCompleteLine(QFile &file)
{
    // A line cut short (the disk was full, the program was killed in a write) ends the
    // file without its line end: it goes, so that the next weld starts a line of its own.
    qint64 size = file.size();
    char last = '\n';
    if (size == 0 || (file.seek(size - 1) && file.getChar(&last) && last == '\n'))
        return size;
    constexpr qint64 kChunk = 4096;
    while (size > 0) {
        const qint64 start = qMax<qint64>(0, size - kChunk);
        if (!file.seek(start))
            return -1;
        const QByteArray chunk = file.read(size - start);
        const qsizetype end = chunk.lastIndexOf('\n');
        if (end >= 0) {
            size = start + end + 1;
            break;
        }
        size = start;
    }
    return file.resize(size) ? size : -1;
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

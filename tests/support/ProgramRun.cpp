#include "ProgramRun.h"

#include <QDebug>
#include <QFile>
#include <QRegularExpression>

namespace ProgramRun {

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(content) == content.size();
}

QStringList dataLogLines(const QString &path)
{
    return QString::fromUtf8(readFile(path)).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
}

quint16 startSimulator(QProcess &sim, const QString &program, const QStringList &options)
{
    sim.start(program, QStringList{"--tcp", "0"} + options);
    if (!sim.waitForStarted(5000))
        return 0;
    for (int tries = 0; tries < 50 && !sim.canReadLine(); ++tries)
        sim.waitForReadyRead(100);
    static const QRegularExpression announced(QStringLiteral("^tcp 127\\.0\\.0\\.1:(\\d+)\\s*$"));
    const QRegularExpressionMatch match = announced.match(QString::fromUtf8(sim.readLine()));
    return match.hasMatch() ? quint16(match.captured(1).toUInt()) : 0;
}

bool runTool(const QString &program, const QStringList &arguments, QByteArray *output,
             const QByteArray &input)
{
    QProcess tool;
    tool.start(program, arguments);
    tool.write(input);
    tool.closeWriteChannel();
    if (!tool.waitForFinished(60000) || tool.exitStatus() != QProcess::NormalExit ||
        tool.exitCode() != 0) {
        qWarning() << arguments << tool.readAllStandardError();
        return false;
    }
    if (output)
        *output = tool.readAllStandardOutput();
    return true;
}

bool parseCsv(const QString &text, QList<QStringList> &rows)
{
    static const QRegularExpression field(QStringLiteral(R"(("(?:[^"]|"")*"|[^",\r\n]*)(,|\r\n))"));
    QStringList row;
    for (qsizetype at = 0; at < text.size();) {
        const QRegularExpressionMatch match =
            field.match(text, at, QRegularExpression::NormalMatch,
                        QRegularExpression::AnchorAtOffsetMatchOption);
        if (!match.hasMatch())
            return false;
        QString value = match.captured(1);
        if (value.startsWith(u'"'))
            value = value.mid(1, value.size() - 2)
                        .replace(QStringLiteral("\"\""), QStringLiteral("\""));
        row.append(value);
        if (match.captured(2) != QLatin1String(",")) {
            rows.append(row);
            row.clear();
        }
        at = match.capturedEnd();
    }
    return row.isEmpty();
}

} // namespace ProgramRun

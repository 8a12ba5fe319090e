#include "ProgramFiles.h"

#include <algorithm>

#include <QDir>
#include <QStandardPaths>

ProgramFiles::ProgramFiles(QString dataFolder)
    : m_dataFolder(std::move(dataFolder))
{}

QString ProgramFiles::resolveDataFolder(const QString &explicitFolder)
{
    if (!explicitFolder.isEmpty())
        return QDir(explicitFolder).absolutePath();
    const QString fromEnvironment = qEnvironmentVariable(kDataDirEnvironment);
    if (!fromEnvironment.isEmpty())
        return QDir(fromEnvironment).absolutePath();
    return platformDataFolder();
}

QString ProgramFiles::platformDataFolder()
{
#ifdef Q_OS_WIN
    const QString base = qEnvironmentVariable("ProgramData", QStringLiteral("C:/ProgramData"));
#else
    const QString base = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
#endif
    return QDir(base).filePath(QStringLiteral("Corvane"));
}

QString ProgramFiles::inDataFolder(const QString &suffix) const
{
    return QDir(m_dataFolder).filePath(QLatin1String(kProgramBaseName) + suffix);
}

bool debugSwitchPresent(const QStringList &arguments)
{
    // Only the whole argument counts: a folder such as "/srv/debug-line" is no switch.
    return std::any_of(arguments.cbegin(), arguments.cend(), [](const QString &argument) {
        return argument.compare(QLatin1String("/debug"), Qt::CaseInsensitive) == 0;
    });
}

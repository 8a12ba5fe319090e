#include "ShellSettings.h"

#include "platform/ProgramFiles.h"

namespace ShellSettings {

std::unique_ptr<SettingsStore> openSettingsStore()
{
    const QString iniPath = qEnvironmentVariable(kSettingsFileEnvironment);
    if (!iniPath.isEmpty())
        return std::make_unique<QtSettingsStore>(iniPath);
    return std::make_unique<QtSettingsStore>();
}

QString applicationTitle(const SettingsStore &store)
{
    return store.read(QStringLiteral("OEM"), QStringLiteral("OSTREL"),
                      QStringLiteral("Corvane Ostrel"));
}

QString buildNumber(const SettingsStore &store)
{
    return store.read(QStringLiteral("Corvane"), QStringLiteral("Build_Number"),
                      QStringLiteral("----"));
}

QString configurationsPath(const SettingsStore &store, const QString &defaultPath)
{
    return store.read(QLatin1String(ProgramFiles::kProgramBaseName), QStringLiteral("File"),
                      defaultPath);
}

} // namespace ShellSettings

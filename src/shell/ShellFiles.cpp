#include "ShellFiles.h"

#include "ShellSettings.h"

#include "platform/ProgramError.h"
#include "platform/ProgramFiles.h"

#include <QDir>

ShellFiles ShellFiles::resolve(const ProgramFiles &files, const SettingsStore &settings,
                               MeasurementSystem regionalDefault)
{
    ShellFiles result;
    result.dataFolder = files.dataFolder();
    result.defaultConfigurationsPath = files.defaultConfigurationsPath();
    result.configurationsPath =
        ShellSettings::configurationsPath(settings, result.defaultConfigurationsPath);
    result.preferencesPath = files.preferencesPath();
    result.measurementSystem = readMeasurementSystem(result.preferencesPath, regionalDefault);
    return result;
}

void ensureDataFolder(const QString &folder)
{
    if (QDir(folder).exists())
        return;
    if (!QDir().mkpath(folder)) {
        throw ProgramError(ProgramError::kPathNotFound,
                           QStringLiteral("Unable to create the data folder %1").arg(folder),
                           QStringLiteral("dlgMain.ensureDataFolder"));
    }
}

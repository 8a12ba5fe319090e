#pragma once

#include "platform/MeasurementSystem.h"

#include <QString>

class ProgramFiles;
class SettingsStore;

// The files that the main window works out once at start, in this order: the data
// folder, the default configurations path, the configurations path (the settings store
// may move it), the preferences path, and then the measurement system read from the
// preferences file. None of them changes during a run.
struct ShellFiles
{
    QString dataFolder;
    QString defaultConfigurationsPath;
    QString configurationsPath;
    QString preferencesPath;
    MeasurementSystem measurementSystem = MeasurementSystem::Metric;

    static ShellFiles resolve(const ProgramFiles &files, const SettingsStore &settings,
                              MeasurementSystem regionalDefault = regionalMeasurementSystem());
};

// Creates the data folder when it is missing: a desktop user's first run has none, and
// the configurations file, the event log and the error log all live there. Fails with a
// ProgramError naming the folder when it cannot be made.
void ensureDataFolder(const QString &folder);

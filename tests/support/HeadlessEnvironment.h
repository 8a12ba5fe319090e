#pragma once

#include <QDir>
#include <QProcessEnvironment>

// The environment a suite starts a headless monitor in: the caller's, less its data folder,
// with a settings file of the suite's own folder, so that the machine's settings store
// stays out of the run.
inline QProcessEnvironment headlessEnvironment(const QDir &folder)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove(QStringLiteral("CORVANE_DATA_DIR"));
    env.insert(QStringLiteral("CORVANE_SETTINGS_FILE"),
               folder.filePath(QStringLiteral("settings.ini")));
    return env;
}

#pragma once

#include "platform/SettingsStore.h"

#include <QString>

#include <memory>

// The three reads that the shell makes from the per-machine settings store.
namespace ShellSettings {

// Names an INI file that stands in for the system store, for tests and demonstrations.
inline constexpr const char *kSettingsFileEnvironment = "CORVANE_SETTINGS_FILE";

// The store in the INI file named by CORVANE_SETTINGS_FILE, otherwise the system store.
std::unique_ptr<SettingsStore> openSettingsStore();

// The application title ("OEM"/"OSTREL"): the main window's caption and the key of the
// single-instance search. An "OEM" entry changes the title and nothing else.
QString applicationTitle(const SettingsStore &store);

// The build number shown in the About box ("Corvane"/"Build_Number"), as it is stored.
QString buildNumber(const SettingsStore &store);

// Where the configurations file lives: key "File" in the section named after the
// executable, an administrator's way of moving the file. Nothing in the program writes
// this key.
QString configurationsPath(const SettingsStore &store, const QString &defaultPath);

} // namespace ShellSettings

#pragma once

#include "shell/ConfigurationMonitor.h"
#include "shell/ShellFiles.h"

#include "platform/MeasurementSystem.h"

#include <QString>

#include <functional>
#include <memory>

class Clock;
class ConfigurationCommands;
class DatabaseSupport;
class ErrorReport;
class EventLog;
class HelpModule;
class MessageBoxes;
class QWidget;
class SettingsStore;
class qlxLanguage;

// One monitor slot of the main window: the monitor the configurations file talks to and
// the face that shows it under the tabs (the window takes the face over; none for a
// monitor without one).
struct MonitorSlot
{
    std::unique_ptr<ConfigurationMonitor> monitor;
    QWidget *view = nullptr;
};

// Makes the monitor of a new slot once the window knows its files and measurement system;
// the window's language object serves the monitor's own dialogs.
using MonitorSlotFactory =
    std::function<MonitorSlot(int slotIndex, const ShellFiles &files, const qlxLanguage &language)>;

// What the main window is built with: the desktop program wires the real services, a
// test wires its own. The services behind the references must outlive the window.
struct MainWindowServices
{
    // Failures of the window's event procedures.
    ErrorReport &errors;
    const Clock &clock;
    // The title, the configurations path override.
    const SettingsStore &settings;
    // The window's caption, the tray's tooltip.
    QString applicationTitle;
    // The data folder as the command line or the environment chose it.
    QString dataFolder;
    // The translation table of the captions; empty for the built-in texts.
    QString languageTable;
    MonitorSlotFactory makeSlot;
    ConfigurationCommands &commands;
    HelpModule &help;
    // View Log of the tray menu.
    DatabaseSupport &database;
    // What the user is told when help or the event log cannot be shown.
    MessageBoxes &messages;
    // The unit system of the user's region: the default when the preferences file has none.
    MeasurementSystem regionalUnits = regionalMeasurementSystem();
    // Where a save that kept an unread original says so.
    EventLog *eventLog = nullptr;
    // Asks for a part, process and test of the SPC database named by the data source and
    // opens its control chart; none where the program has no chart window.
    std::function<void(const qlxLanguage &language, const QString &dataSource, QWidget *parent)>
        chooseControlChart = {};
};

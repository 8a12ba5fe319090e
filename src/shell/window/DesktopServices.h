#pragma once

#include "DialogConfigurationCommands.h"
#include "HelpModule.h"
#include "MainWindowServices.h"

#include "dialogs/FileDialogChooser.h"
#include "monitor/WeldSimulator.h"
#include "outbox/SubgroupOutbox.h"
#include "platform/Clock.h"
#include "platform/EventLog.h"
#include "platform/LoggedErrorReport.h"
#include "platform/ProgramFiles.h"
#include "platform/qlxLanguage.h"
#include "platform/widgets/ErrorWindowReport.h"
#include "platform/widgets/WidgetMessageBoxes.h"
#include "sampling/DatabaseSupport.h"
#include "sampling/widgets/SamplingDialogServices.h"
#include "sampling/widgets/WidgetPartSelector.h"
#ifdef CORVANE_HAVE_CHARTS
#include "spc/widgets/ControlChartWindows.h"
#endif

#include <QRandomGenerator>
#include <QString>

#include <memory>

class BrokerPublishing;
class SettingsStore;
struct StartupOptions;

// The composition root of the desktop program: the real clock, settings store, error
// report (logged and listed in a window), event log, message boxes, file chooser, help,
// the Configure dialogs, and the maker of monitor slots that wires each equipment monitor
// to real TCP and serial links, to SPC sampling and to its face.
class DesktopServices
{
public:
    DesktopServices(const StartupOptions &options, const QString &applicationTitle,
                    const QString &executableFolder);
    ~DesktopServices();

    MainWindowServices windowServices();
    ErrorReport &errors() { return m_errors; }
    // Publishing to the MQTT broker of the preferences file or --mqtt; null without one.
    BrokerPublishing *brokerPublishing() const { return m_broker.get(); }
    // Why nothing is published although a broker is set (a refused password file, a
    // build without MQTT); empty otherwise.
    const QString &brokerNotice() const { return m_brokerNotice; }

private:
    MonitorSlot makeSlot(int slotIndex, const ShellFiles &files, const qlxLanguage &language);

    QString m_applicationTitle;
    QString m_languageTable;
    // The captions of the error window, which exists before the main window.
    qlxLanguage m_errorWindowLanguage;
    bool m_debugMode;
    qint64 m_valuesKept;
    SystemClock m_clock;
    // "/debug": one generator for every tab, started afresh on each run.
    WeldSimulator m_simulator{QRandomGenerator::system()->generate()};
    std::unique_ptr<SettingsStore> m_settings;
    ProgramFiles m_programFiles;
    LoggedErrorReport m_log;
    ErrorWindowReport m_errors;
    EventLog m_eventLog;
    DatabaseSupport m_database;
    WidgetMessageBoxes m_messages;
    FileDialogChooser m_fileChooser;
    HelpModule m_help;
    DialogConfigurationCommands m_commands;
    SamplingDialogServices m_samplingDialogs;
    // Made with the window's language for the first monitor; the monitors' part buttons
    // share it.
    std::unique_ptr<WidgetPartSelector> m_partSelector;
    QString m_brokerNotice;
    std::unique_ptr<BrokerPublishing> m_broker;
    // Made with the first monitor, beside the configurations file.
    std::unique_ptr<SubgroupOutbox> m_outbox;
#ifdef CORVANE_HAVE_CHARTS
    // The control-chart windows, opened from a summary or the Configuration menu.
    ControlChartWindows m_charts{m_errors, m_messages, m_clock};
#endif
};

#pragma once

#include "HeadlessOptions.h"
#include "ShellFiles.h"

#include "monitor/WeldSimulator.h"
#include "platform/Clock.h"
#include "platform/RegionalFormat.h"
#include "platform/qlxLanguage.h"

#include <QObject>
#include <QRandomGenerator>
#include <QString>

#include <cstdio>
#include <memory>

class BrokerPublishing;
class ConfigurationSet;
class DatabaseSupport;
class EventLog;
class HeadlessMessageBoxes;
class LoggedErrorReport;
class SettingsStore;
class SubgroupOutbox;
struct CorvaneFUN26;

// corvane-monitor without a window: the composition root that wires the real links,
// the error report, the event log and one equipment monitor per configuration of the
// configurations file, starts data collection on all of them and, when asked to stop,
// stops them and saves the file as Shut Down does. It never prompts, and it never adds
// a configuration of its own.
class HeadlessRunner : public QObject
{
    Q_OBJECT

public:
    // Weld lines of a verbose run go to output.
    explicit HeadlessRunner(HeadlessOptions options, std::FILE *output = stdout,
                            QObject *parent = nullptr);
    ~HeadlessRunner() override;

    // start(), then the event loop until SIGINT, SIGTERM or SIGHUP, then stop(). The
    // exit status: 0 after a clean stop, 1 when the program could not start or could not
    // save its configurations file.
    int exec();

    // Creates the data folder when missing, reads the settings and preferences, loads
    // the configurations and starts data collection on each. False (with the reason on
    // standard error) when the data folder cannot be made or the configurations file
    // cannot be read; that file is then left as it is.
    bool start();
    // Stops every monitor, writes the configurations file from the monitors and shuts
    // every slot down. False when the file could not be saved (the old one is kept).
    bool stop();

    const ShellFiles &files() const { return m_files; }
    ConfigurationSet *configurations() const { return m_configurations.get(); }
    const QString &applicationTitle() const { return m_title; }

private:
    void printWeld(const QString &configurationName, const CorvaneFUN26 &record);
    void startBrokerPublishing();

    HeadlessOptions m_options;
    SystemClock m_clock;
    // "/debug": one generator for every monitor, started afresh on each run.
    WeldSimulator m_simulator{QRandomGenerator::system()->generate()};
    std::FILE *m_output;
    ShellFiles m_files;
    QString m_title;
    qlxLanguage m_language;
    RegionalFormat m_format;
    std::unique_ptr<SettingsStore> m_settings;
    std::unique_ptr<LoggedErrorReport> m_errors;
    std::unique_ptr<EventLog> m_eventLog;
    std::unique_ptr<DatabaseSupport> m_databaseSupport;
    std::unique_ptr<HeadlessMessageBoxes> m_messageBoxes;
    std::unique_ptr<SubgroupOutbox> m_outbox;
    std::unique_ptr<BrokerPublishing> m_broker;
    std::unique_ptr<ConfigurationSet> m_configurations;
    bool m_loaded = false;
    bool m_started = false;
};

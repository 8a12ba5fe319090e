#pragma once

#include "ManualClock.h"
#include "RecordingErrorReport.h"
#include "RecordingMessageBoxes.h"

#include "../FakeMonitor.h"

#include "platform/ProgramFiles.h"
#include "platform/SettingsStore.h"
#include "sampling/DatabaseSupport.h"
#include "shell/window/ConfigurationCommands.h"
#include "shell/window/HelpModule.h"
#include "shell/window/dlgMain.h"

#include <QDomDocument>
#include <QFile>
#include <QLabel>
#include <QTabBar>
#include <QTemporaryDir>

// The Configure dialogs answered by the test, each call kept as (command, monitor,
// parent): Equipment Settings renames the monitor to the next lined-up name and
// confirms, or cancels when none is left.
class ScriptedCommands : public ConfigurationCommands
{
public:
    using Call = std::tuple<QString, ConfigurationMonitor *, QWidget *>;

    bool ConfigureEquipment(ConfigurationMonitor &monitor, const Context &context) override
    {
        if (!record("equipment", monitor, context) || names.isEmpty())
            return false;
        static_cast<FakeMonitor &>(monitor).setName(names.takeFirst());
        return true;
    }
    bool ConfigureDataLogging(ConfigurationMonitor &monitor, const Context &context) override
    {
        return record("data logging", monitor, context);
    }
    bool ConfigureSampling(ConfigurationMonitor &monitor, const Context &context) override
    {
        return record("sampling", monitor, context);
    }

    QStringList names;
    QList<Call> calls;

private:
    bool record(const char *command, ConfigurationMonitor &monitor, const Context &context)
    {
        return calls.append({QLatin1String(command), &monitor, context.parent}), true;
    }
};

// A main window over fake monitors (each shown by a label) in a data folder of its own,
// with the settings store in a file, and help pages and the event log viewer recorded
// instead of opened.
struct WindowFixture
{
    static constexpr const char *kTitle = "Ostrel Test Bench";

    WindowFixture()
        : settings(path(QStringLiteral("settings.ini")))
        , files(folder.path())
        , help(QStringLiteral(CORVANE_SOURCE_DIR "/help/corvane-monitor.Help.Map"),
               [this](const QUrl &url) { return helpPages.append(url), desktopOpens; })
        , database(
              errors, files, [] { return true; }, libraryFlag,
              [this](const DatabaseSupport::ViewerCommand &command) {
                  return viewerCommands.append(command), desktopOpens;
              })
    {}

    QString path(const QString &name) const { return folder.filePath(name); }

    // Writes or reads a file of the data folder; one that cannot be read reads as
    // "<unreadable>".
    void write(const QString &name, const QByteArray &bytes) const
    {
        QFile file(path(name));
        if (file.open(QIODevice::WriteOnly))
            file.write(bytes);
    }
    QByteArray read(const QString &name = QStringLiteral("corvane-monitor.cfg")) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
    }
    void writeConfigurations(const QStringList &elements) const
    {
        write(QStringLiteral("corvane-monitor.cfg"),
              ("<Configurations>" + elements.join(QString()) + "</Configurations>").toUtf8());
    }

    dlgMain &open()
    {
        window = std::make_unique<dlgMain>(MainWindowServices{
            .errors = errors,
            .clock = clock,
            .settings = settings,
            .applicationTitle = QLatin1String(kTitle),
            .dataFolder = folder.path(),
            .languageTable = languageTable,
            .makeSlot =
                [this](int slotIndex, const ShellFiles &, const qlxLanguage &) {
                    auto monitor =
                        std::make_unique<FakeMonitor>(QStringLiteral("key-%1").arg(slotIndex));
                    monitor->refuseAll = refuseAll;
                    monitors.append(monitor.get());
                    views.append(new QLabel(QStringLiteral("monitor %1").arg(slotIndex)));
                    return MonitorSlot{std::move(monitor), views.last()};
                },
            .commands = commands,
            .help = help,
            .database = database,
            .messages = messages,
            .regionalUnits = MeasurementSystem::Metric,
        });
        window->Form_Load();
        window->show();
        return *window;
    }

    QStringList tabCaptions() const
    {
        QStringList captions;
        for (int i = 0; i < window->tabStrip()->count(); ++i)
            captions.append(window->tabStrip()->tabText(i));
        return captions;
    }

    QTemporaryDir folder;
    RecordingErrorReport errors;
    ManualClock clock;
    QtSettingsStore settings;
    ProgramFiles files;
    ScriptedCommands commands;
    RecordingMessageBoxes messages;
    // Whether the desktop starts a browser for help and a viewer for the event log.
    bool desktopOpens = true;
    QList<QUrl> helpPages;
    HelpModule help;
    DatabaseSupport::LibraryFlag libraryFlag;
    QList<DatabaseSupport::ViewerCommand> viewerCommands;
    DatabaseSupport database;
    QString languageTable;
    bool refuseAll = false;
    QList<FakeMonitor *> monitors;
    QList<QLabel *> views;
    std::unique_ptr<dlgMain> window;
};

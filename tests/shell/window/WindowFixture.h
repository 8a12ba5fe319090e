#pragma once

#include "ManualClock.h"
#include "RecordingErrorReport.h"

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

// A welder's monitor without a welder: it keeps the Configuration element it was given
// (a new one is named "New"), refuses one that carries Refuse="1", samples when it
// carries Sampling="1", and collects (DriverState 2) between StartStop calls.
class FakeMonitor : public ConfigurationMonitor
{
public:
    explicit FakeMonitor(QString key)
        : m_key(std::move(key))
    {}

    void Initialize(const qlxLanguage &, int) override {}
    bool Load(const QString &xml) override
    {
        QDomDocument document;
        document.setContent(xml.isEmpty() ? QStringLiteral("<Configuration><Equipment "
                                                           "Name=\"New\"/></Configuration>")
                                          : xml);
        if (refuseAll || element(document).attribute(QStringLiteral("Refuse")) == u'1')
            return false;
        m_document = document;
        m_state = 1;
        return true;
    }
    QDomElement GetXMLNode() const override { return m_document.documentElement(); }
    bool ShutDown() override
    {
        ++shutDowns;
        m_state = 0;
        return true;
    }
    int DriverState() const override { return m_state; }
    QString identifier() const override { return m_key; }
    QString configurationName() const override
    {
        return equipment().attribute(QStringLiteral("Name"));
    }
    bool SPCSamplingEnabled() const override
    {
        return element(m_document).attribute(QStringLiteral("Sampling")) == u'1';
    }
    void StartStop() override { m_state = m_state == 1 ? 2 : 1; }
    void StartDataCollection() override { m_state = 2; }
    void StopDataCollection() override { m_state = 1; }

    void setName(const QString &name) { equipment().setAttribute(QStringLiteral("Name"), name); }

    bool refuseAll = false;
    int shutDowns = 0;

private:
    static QDomElement element(const QDomDocument &document) { return document.documentElement(); }
    QDomElement equipment() const
    {
        return element(m_document).firstChildElement(QStringLiteral("Equipment"));
    }

    QString m_key;
    QDomDocument m_document;
    int m_state = 0;
};

// The Configure dialogs answered by the test: Equipment Settings renames the monitor to
// the next lined-up name and confirms, or cancels when none is left.
class ScriptedCommands : public ConfigurationCommands
{
public:
    bool ConfigureEquipment(ConfigurationMonitor &monitor, const Context &context) override
    {
        calls.append({QStringLiteral("equipment"), &monitor, context.parent});
        if (names.isEmpty())
            return false;
        static_cast<FakeMonitor &>(monitor).setName(names.takeFirst());
        return true;
    }
    bool ConfigureDataLogging(ConfigurationMonitor &monitor, const Context &context) override
    {
        calls.append({QStringLiteral("data logging"), &monitor, context.parent});
        return true;
    }
    bool ConfigureSampling(ConfigurationMonitor &monitor, const Context &context) override
    {
        calls.append({QStringLiteral("sampling"), &monitor, context.parent});
        return true;
    }

    struct Call
    {
        QString command;
        ConfigurationMonitor *monitor;
        QWidget *parent;
    };
    QStringList names;
    QList<Call> calls;
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
               [this](const QUrl &url) { return helpPages.append(url), true; })
        , database(
              errors, files, [] { return true; }, libraryFlag,
              [this](const DatabaseSupport::ViewerCommand &command) {
                  return viewerCommands.append(command), true;
              })
    {}

    QString path(const QString &name) const { return folder.filePath(name); }

    static void write(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        if (file.open(QIODevice::WriteOnly))
            file.write(bytes);
    }

    void writeConfigurations(const QStringList &elements) const
    {
        write(path(QStringLiteral("corvane-monitor.cfg")),
              ("<Configurations>" + elements.join(QString()) + "</Configurations>").toUtf8());
    }

    QByteArray readConfigurations() const
    {
        QFile file(path(QStringLiteral("corvane-monitor.cfg")));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
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

// One Configuration element for a fake monitor.
inline QString welder(const QString &name, const QString &extra = {})
{
    return QStringLiteral("<Configuration%1><Equipment Name=\"%2\"/></Configuration>")
        .arg(extra, name);
}

#include "DesktopServices.h"

#include "InstalledFiles.h"
#include "StartupOptions.h"
#include "WindowMonitorSlot.h"

#include "monitor/EquipmentMonitor.h"
#include "monitor/widgets/CorvaneUsw.h"
#include "platform/QtSerialPort.h"
#include "platform/TcpSocketPort.h"
#include "sampling/SamplingProperties.h"
#include "shell/BrokerPublishing.h"
#include "shell/ShellFiles.h"
#include "shell/ShellSettings.h"

DesktopServices::DesktopServices(const StartupOptions &options, const QString &applicationTitle,
                                 const QString &executableFolder)
    : m_applicationTitle(applicationTitle)
    , m_languageTable(
          InstalledFiles::languageTable(InstalledFiles::chosenLanguage(options.language),
                                        InstalledFiles::folders(executableFolder)))
    , m_debugMode(options.program.debugMode)
    , m_valuesKept(options.program.valuesKept)
    , m_settings(ShellSettings::openSettingsStore())
    , m_programFiles(ProgramFiles::resolveDataFolder(options.program.dataFolder))
    , m_log(m_programFiles.errorReportLogPath(), QLatin1String(ProgramFiles::kProgramBaseName),
            m_clock, false)
    , m_errors(m_log, applicationTitle, m_errorWindowLanguage)
    , m_eventLog(m_programFiles.eventLogPath(), m_clock)
    , m_database(m_errors, m_programFiles)
    , m_fileChooser(m_messages, m_programFiles.dataFolder())
    , m_help(InstalledFiles::find(HelpModule::mapFileName(),
                                  InstalledFiles::folders(executableFolder)))
    , m_commands({.errors = m_errors,
                  .messages = m_messages,
                  .database = m_database,
                  .fileChooser = m_fileChooser,
                  .clock = m_clock})
    , m_samplingDialogs{.errors = m_errors, .messages = m_messages}
{
    // A table that cannot be read is reported by the main window, which reads it too.
    if (!m_languageTable.isEmpty())
        m_errorWindowLanguage.loadTable(m_languageTable);
    const ShellFiles files = ShellFiles::resolve(m_programFiles, *m_settings);
    const MqttSettings broker = BrokerPublishing::settingsFor(
        files.preferencesPath, options.program.mqttUrl, &m_brokerNotice);
    m_broker = BrokerPublishing::start(broker, m_eventLog, files.measurementSystem, m_clock,
                                       &m_brokerNotice);
}

DesktopServices::~DesktopServices() = default;

MainWindowServices DesktopServices::windowServices()
{
    return MainWindowServices{
        .errors = m_errors,
        .clock = m_clock,
        .settings = *m_settings,
        .applicationTitle = m_applicationTitle,
        .dataFolder = m_programFiles.dataFolder(),
        .languageTable = m_languageTable,
        .makeSlot =
            [this](int slotIndex, const ShellFiles &files, const qlxLanguage &language) {
                return makeSlot(slotIndex, files, language);
            },
        .commands = m_commands,
        .help = m_help,
        .database = m_database,
        .messages = m_messages,
        .eventLog = &m_eventLog,
#ifdef CORVANE_HAVE_CHARTS
        .chooseControlChart =
            [this](const qlxLanguage &language, const QString &dataSource, QWidget *parent) {
                m_charts.choose(language, dataSource, parent);
            },
#endif
    };
}

MonitorSlot DesktopServices::makeSlot(int slotIndex, const ShellFiles &files,
                                      const qlxLanguage &language)
{
    Q_UNUSED(slotIndex)
    if (!m_partSelector)
        m_partSelector = std::make_unique<WidgetPartSelector>(language, m_samplingDialogs);
    if (!m_outbox) {
        m_outbox = std::make_unique<SubgroupOutbox>(
            SubgroupOutbox::besideConfigurations(files.configurationsPath));
    }
    const auto makeSampling = [this, dataFolder = files.dataFolder] {
        auto sampling = std::make_unique<SamplingProperties>(SamplingServices{
            .errors = m_errors,
            .clock = m_clock,
            .support = m_database,
            .messageBoxes = m_messages,
            .dataFolder = dataFolder,
            .makeDatabase = {},
            .partSelector = m_partSelector.get(),
            .outbox = m_outbox.get(),
            .eventLog = &m_eventLog,
        });
#ifdef CORVANE_HAVE_CHARTS
        // The open charts of the part and process follow each subgroup the database took.
        QObject::connect(sampling.get(), &SamplingProperties::subgroupCompleted, sampling.get(),
                         [this](const qlaDatabase6::Subgroup &subgroup, bool queued) {
                             if (!queued)
                                 m_charts.subgroupStored(subgroup.header().part,
                                                         subgroup.header().process);
                         });
#endif
        return sampling;
    };
    auto monitor = std::make_unique<EquipmentMonitor>(MonitorServices{
        .errors = m_errors,
        .eventLog = m_eventLog,
        .clock = m_clock,
        .measurementSystem = files.measurementSystem,
        .debugMode = m_debugMode,
        .makeSocket = [] { return std::make_unique<TcpSocketPort>(); },
        .makeSerialPort = [] { return std::make_unique<QtSerialPort>(); },
        .simulator = &m_simulator,
        .valueBound = m_valuesKept,
        .makeSampling = makeSampling,
        .messageBoxes = &m_messages,
    });
    if (m_broker)
        m_broker->watch(*monitor);
    auto *view = new CorvaneUsw(*monitor, m_errors);
#ifdef CORVANE_HAVE_CHARTS
    view->setControlChartOpener(
        [this, &language, sampling = &monitor->sampling()](const QString &test, QWidget *parent) {
            m_charts.open(language, sampling->DataSourceName(),
                          {sampling->Part(), sampling->Process(), test}, parent);
        });
#endif
    return {std::make_unique<WindowMonitorSlot>(std::move(monitor), view), view};
}

#include "HeadlessRunner.h"

#include "BrokerPublishing.h"
#include "ConfigurationSet.h"
#include "DroppedContent.h"
#include "EquipmentMonitorSlot.h"
#include "ShellSettings.h"
#include "TerminationSignals.h"
#include "WeldLine.h"
#include "XmlText.h"

#include "monitor/EquipmentMonitor.h"
#include "outbox/SubgroupOutbox.h"
#include "platform/ErrorPassing.h"
#include "platform/EventLog.h"
#include "platform/HeadlessMessageBoxes.h"
#include "platform/LoggedErrorReport.h"
#include "platform/ProgramFiles.h"
#include "platform/QtSerialPort.h"
#include "platform/TcpSocketPort.h"
#include "sampling/DatabaseSupport.h"
#include "sampling/SamplingProperties.h"
#include "service/ServiceManager.h"

#include <QEventLoop>

HeadlessRunner::HeadlessRunner(HeadlessOptions options, std::FILE *output, QObject *parent)
    : QObject(parent)
    , m_options(std::move(options))
    , m_output(output)
{}

HeadlessRunner::~HeadlessRunner() = default;

int HeadlessRunner::exec()
{
    // Caught before anything starts: a stop request that comes early waits in the
    // socket pair until the event loop runs.
    TerminationSignals termination;
    if (!termination.isActive()) {
        std::fprintf(stderr, "corvane-monitor: cannot catch SIGINT, SIGTERM and SIGHUP\n");
        return 1;
    }
    if (!start())
        return 1;
    // Run as a service, the manager learns that the welders are watched once the
    // configurations are loaded, and the event log goes to the journal as well.
    ServiceManager service;
    if (service.isManaged())
        m_eventLog->setMirror(&ServiceManager::writeJournal);
    service.notifyReady(
        QStringLiteral("Watching %1 welder(s)").arg(m_configurations->ConfigurationCount()));
    QEventLoop loop;
    connect(&termination, &TerminationSignals::terminationRequested, &loop, &QEventLoop::quit);
    loop.exec();
    service.notifyStopping();
    // A configurations file that could not be saved is a failure the service manager
    // must see; the old file is still there.
    return stop() ? 0 : 1;
}

bool HeadlessRunner::start()
{
    const ProgramFiles programFiles(ProgramFiles::resolveDataFolder(m_options.dataFolder));
    try {
        ensureDataFolder(programFiles.dataFolder());
    } catch (const ProgramError &error) {
        std::fprintf(stderr, "corvane-monitor: %s\n", qPrintable(error.description()));
        return false;
    }
    m_settings = ShellSettings::openSettingsStore();
    m_title = ShellSettings::applicationTitle(*m_settings);
    m_files = ShellFiles::resolve(programFiles, *m_settings);
    m_errors = std::make_unique<LoggedErrorReport>(programFiles.errorReportLogPath(),
                                                   QLatin1String(ProgramFiles::kProgramBaseName),
                                                   m_clock, true);
    m_eventLog = std::make_unique<EventLog>(programFiles.eventLogPath(), m_clock);
    m_databaseSupport = std::make_unique<DatabaseSupport>(*m_errors, programFiles);
    m_messageBoxes = std::make_unique<HeadlessMessageBoxes>(*m_errors);
    startBrokerPublishing();
    m_outbox = std::make_unique<SubgroupOutbox>(
        SubgroupOutbox::besideConfigurations(m_files.configurationsPath));

    const auto makeSampling = [this, dataFolder = programFiles.dataFolder()] {
        return std::make_unique<SamplingProperties>(SamplingServices{
            .errors = *m_errors,
            .clock = m_clock,
            .support = *m_databaseSupport,
            .messageBoxes = *m_messageBoxes,
            .dataFolder = dataFolder,
            .makeDatabase = {},
            .partSelector = nullptr,
            .outbox = m_outbox.get(),
            .eventLog = m_eventLog.get(),
        });
    };
    const auto makeMonitor = [this, makeSampling](int) -> std::unique_ptr<ConfigurationMonitor> {
        MonitorServices services{
            .errors = *m_errors,
            .eventLog = *m_eventLog,
            .clock = m_clock,
            .measurementSystem = m_files.measurementSystem,
            .debugMode = m_options.debugMode,
            .makeSocket = [] { return std::make_unique<TcpSocketPort>(); },
            .makeSerialPort = [] { return std::make_unique<QtSerialPort>(); },
            .simulator = &m_simulator,
            .valueBound = m_options.valuesKept,
            .makeSampling = makeSampling,
            .messageBoxes = m_messageBoxes.get(),
        };
        auto monitor = std::make_unique<EquipmentMonitor>(std::move(services));
        if (m_broker)
            m_broker->watch(*monitor);
        if (m_options.verbose) {
            EquipmentMonitor *source = monitor.get();
            connect(source, &EquipmentMonitor::weldProcessed, this,
                    [this, source](const CorvaneFUN26 &record) {
                        printWeld(source->configurationName(), record);
                    });
            connect(source, &EquipmentMonitor::ruleViolated, this,
                    [this, source](const RuleViolation &, const QString &text) {
                        printLine(source->configurationName() + QStringLiteral(": ") + text);
                    });
            connect(source, &EquipmentMonitor::spcBacklogChanged, this,
                    [this, source](int backlog) {
                        std::fprintf(m_output, "%s: SPC backlog %d subgroup(s)\n",
                                     qPrintable(source->configurationName()), backlog);
                        std::fflush(m_output);
                    });
        }
        return std::make_unique<EquipmentMonitorSlot>(std::move(monitor));
    };
    m_configurations = std::make_unique<ConfigurationSet>(m_files.configurationsPath, m_clock,
                                                          m_language, makeMonitor);

    connect(m_configurations.get(), &ConfigurationSet::unreadContentKept, this,
            [this](const QString &copyPath, const QStringList &dropped) {
                std::fprintf(stderr, "corvane-monitor: kept the original configurations as %s\n",
                             qPrintable(copyPath));
                reportFailures(*m_errors, "dlgMain.Form_QueryUnload",
                               [&] { logUnreadKept(*m_eventLog, copyPath, dropped); });
            });
    // A service manager must see a file that cannot be read: the run ends at once, and
    // the file is left for the engineer to mend.
    try {
        m_configurations->LoadConfigurationFile();
    } catch (const ProgramError &error) {
        std::fprintf(stderr, "corvane-monitor: %s cannot be read: %s\n",
                     qPrintable(m_files.configurationsPath),
                     qPrintable(error.description().simplified()));
        return false;
    }
    m_loaded = true;
    for (int i = 0; i < m_configurations->slotCount(); ++i) {
        ConfigurationMonitor &monitor = m_configurations->monitor(i);
        if (monitor.DriverState() != 0) {
            reportFailures(*m_errors, "dlgMain.mnuStartStop_Click",
                           [&] { monitor.StartDataCollection(); });
        }
    }
    std::fprintf(stderr, "%s: watching %d configuration(s) of %s; %s ends.\n", qPrintable(m_title),
                 m_configurations->ConfigurationCount(), qPrintable(m_files.configurationsPath),
                 TerminationSignals::kHowToEnd);
    m_started = true;
    return true;
}

bool HeadlessRunner::stop()
{
    if (!m_started)
        return true;
    m_started = false;
    for (int i = 0; i < m_configurations->slotCount(); ++i) {
        ConfigurationMonitor &monitor = m_configurations->monitor(i);
        if (monitor.DriverState() > 1) {
            reportFailures(*m_errors, "dlgMain.mnuStartStop_Click",
                           [&] { monitor.StopDataCollection(); });
        }
    }
    if (m_broker)
        m_broker->finish();
    bool saved = true;
    if (m_loaded) {
        saved = reportFailures(*m_errors, "dlgMain.Form_QueryUnload", [&] {
            m_configurations->WriteConfigurationFile(xmlText(m_configurations->GetXMLNode()));
        });
    }
    reportFailures(*m_errors, "dlgMain.Form_QueryUnload", [&] {
        for (int i = 0; i < m_configurations->slotCount(); ++i)
            m_configurations->monitor(i).ShutDown();
    });
    return saved;
}

void HeadlessRunner::startBrokerPublishing()
{
    QString notice;
    const MqttSettings settings =
        BrokerPublishing::settingsFor(m_files.preferencesPath, m_options.mqttUrl, &notice);
    m_broker =
        BrokerPublishing::start(settings, *m_eventLog, m_files.measurementSystem, m_clock, &notice);
    if (!notice.isEmpty())
        std::fprintf(stderr, "corvane-monitor: %s\n", qPrintable(notice));
    if (m_broker && m_options.verbose) {
        // On standard error: standard output carries one line per weld and nothing else.
        const auto show = [](const QString &text) {
            std::fprintf(stderr, "%s\n", qPrintable(text));
        };
        connect(m_broker.get(), &BrokerPublishing::stateTextChanged, this, show);
        show(m_broker->stateText());
    }
}

void HeadlessRunner::printWeld(const QString &configurationName, const CorvaneFUN26 &record)
{
    printLine(verboseWeldLine(configurationName, record, m_language, m_format));
}

void HeadlessRunner::printLine(const QString &line)
{
    std::fprintf(m_output, "%s\n", line.toUtf8().constData());
    std::fflush(m_output);
}

#include "EquipmentMonitor.h"

#include "DataLog.h"
#include "LinkRules.h"
#include "SamplingSeam.h"
#include "WeldSimulator.h"

#include "platform/Clock.h"
#include "platform/ErrorPassing.h"
#include "platform/EventLog.h"
#include "platform/MessageBoxes.h"

#include <QUuid>

#include <algorithm>

EquipmentMonitor::EquipmentMonitor(MonitorServices services, QObject *parent)
    : QObject(parent)
    , m_services(std::move(services))
    , m_identifier(QUuid::createUuid().toString(QUuid::WithoutBraces))
    , m_linkEvents(m_services.eventLog, m_services.clock)
{
    m_sampling = m_services.makeSampling ? m_services.makeSampling() : nullptr;
    if (!m_sampling)
        m_sampling = std::make_unique<NullSampling>();
    connect(m_sampling.get(), &SamplingSeam::backlogChanged, this,
            &EquipmentMonitor::spcBacklogChanged);
    // Queued: the database may answer in the middle of a save, while the datasets are
    // being read.
    connect(m_sampling.get(), &SamplingSeam::databaseReachable, this,
            &EquipmentMonitor::reloadSpecificationLimits, Qt::QueuedConnection);
    m_link = std::make_unique<EquipmentLink>(m_services.clock, m_services.makeSocket,
                                             m_services.makeSerialPort);
    connectLink();
    m_dataLog = std::make_unique<DataLog>(m_services.eventLog, m_services.errors);
    m_simulator = m_services.simulator;
    if (!m_simulator) {
        m_ownSimulator = std::make_unique<WeldSimulator>();
        m_simulator = m_ownSimulator.get();
    }

    m_timer.setInterval(kTimerIntervalMs);
    connect(&m_timer, &QTimer::timeout, this, &EquipmentMonitor::Timer1_Timer);
    m_backlogTimer.setSingleShot(true);
    m_backlogTimer.setInterval(0);
    connect(&m_backlogTimer, &QTimer::timeout, this, &EquipmentMonitor::drainBacklog);
}

void EquipmentMonitor::connectLink()
{
    EquipmentLink *link = m_link.get();
    connect(link, &EquipmentLink::bytesArrived, this, [this](const QByteArray &bytes) {
        if (m_link->isSerial())
            MSComm1_OnComm(bytes);
        else
            Winsock1_DataArrival(bytes);
    });
    connect(link, &EquipmentLink::connected, this, &EquipmentMonitor::Winsock1_Connect);
    connect(link, &EquipmentLink::closed, this, &EquipmentMonitor::Winsock1_Close);
    connect(link, &EquipmentLink::errorOccurred, this, &EquipmentMonitor::Winsock1_Error);
    connect(link, &EquipmentLink::connectAttempted, this, &EquipmentMonitor::NotifyStarted);
    connect(link, &EquipmentLink::portRefused, this, [this](const QString &reason) {
        StopDataCollection();
        portRefused(reason);
    });
    connect(link, &EquipmentLink::connectionLabelChanged, this,
            &EquipmentMonitor::showConnectionLabel);
    connect(link, &EquipmentLink::connectionProblemChanged, this,
            &EquipmentMonitor::showConnectionProblem);
    connect(link, &EquipmentLink::linkStateChanged, this, &EquipmentMonitor::linkStateChanged);
}

EquipmentMonitor::~EquipmentMonitor()
{
    m_timer.stop();
    m_backlogTimer.stop();
    // The ports go first, so that nothing they report on closing reaches a half-gone
    // monitor.
    m_link.reset();
}

QString EquipmentMonitor::translate(QStringView token) const
{
    return m_language->Translate(token);
}

void EquipmentMonitor::Initialize(const qlxLanguage &language, int slotIndex)
{
    Q_UNUSED(slotIndex) // the main window's tab slot; the monitor does not need it
    reportFailures(m_services.errors, "CorvaneUsw.Initialize", [&] {
        m_language = &language;
        InitializeDatasets();
        setStartStopCaption(translate(u"3786|&Start"));
        showConnectionLabel(GetSocketState());
        m_timer.start();
    });
}

// ---- Start and stop ------------------------------------------------------------------

void EquipmentMonitor::StartStop()
{
    reportFailures(m_services.errors, "CorvaneUsw.bnStartStop_Click", [&] {
        // A running collection stops whatever its port is doing: a socket that never left
        // the closed state must not turn every Stop into another Start.
        if (m_link->linkState() >= LinkState::ConnectRequested) {
            stopCollection();
            return;
        }
        if (m_link->isSerial()) {
            // A port whose device went away is still collecting: it is reopened when
            // the device is back.
            if (m_link->serialPortOpen() || m_link->serialPortLost())
                stopCollection();
            else
                startCollection();
            return;
        }
        switch (LinkRules::startStopAction(m_link->socketState())) {
        case LinkRules::StartStopAction::Start:
            startCollection();
            break;
        case LinkRules::StartStopAction::Stop:
            stopCollection();
            break;
        case LinkRules::StartStopAction::Ignore:
            break;
        }
    });
}

void EquipmentMonitor::StartDataCollection()
{
    reportFailures(m_services.errors, "CorvaneUsw.StartDataCollection", [&] { startCollection(); });
}

void EquipmentMonitor::StopDataCollection()
{
    reportFailures(m_services.errors, "CorvaneUsw.StopDataCollection", [&] { stopCollection(); });
}

void EquipmentMonitor::startCollection()
{
    passOn("CorvaneUsw.StartDataCollection", [&] {
        if (const std::optional<QString> problem = LinkRules::addressProblem(address())) {
            refuseAddress(*problem);
            return;
        }
        if (m_sampling->Enabled() && !m_sampling->StartCollection(*m_language))
            return;
        m_alarms.clear();
        emit alarmsChanged();
        InitializeDatasets();
        m_sampling->InitializeSpecificationLimits(m_datasets);
        m_startTime = m_services.clock.now();
        EnableDisplayItems(false);
        InitializeDataLogging();
        if (m_link->isSerial())
            m_link->ReconnectComm(*m_language);
        else
            m_link->ReconnectSocket();
    });
}

void EquipmentMonitor::stopCollection()
{
    passOn("CorvaneUsw.StopDataCollection", [&] {
        m_link->setLinkState(LinkState::Stopped);
        m_link->close();
        m_backlogTimer.stop();
        m_link->setPaused(false);
        NotifyStopped();
        m_sampling->StopCollection(*m_language, m_datasets);
        EnableDisplayItems(true);
    });
}

void EquipmentMonitor::refuseAddress(const QString &reason)
{
    showConnectionLabel(translate(u"6056|Invalid Port Number"));
    showConnectionProblem(true);
    portRefused(reason);
}

void EquipmentMonitor::portRefused(const QString &reason)
{
    reportFailures(m_services.errors, "CorvaneUsw.StartDataCollection", [&] {
        m_services.eventLog.WriteEventLog(
            QStringLiteral("Main"), QStringLiteral("Invalid Port Number"),
            ProgramError::kProgramErrorNumber, reason,
            m_configuration.name + QStringLiteral(" (") + address() + u')');
    });
    if (m_services.messageBoxes) {
        m_services.messageBoxes->critical(m_configuration.name,
                                          translate(u"6056|Invalid Port Number") +
                                              QStringLiteral("\r\n\r\n") + reason);
    }
}

void EquipmentMonitor::reloadSpecificationLimits()
{
    // A collection that started while the SPC database was away runs without limits
    // until it answers.
    reportFailures(m_services.errors, "CorvaneUsw.InitializeSpecificationLimits", [&] {
        if (m_link->linkState() < LinkState::ConnectRequested)
            return;
        m_sampling->InitializeSpecificationLimits(m_datasets);
        RefreshDisplay();
    });
}

void EquipmentMonitor::NotifyStarted()
{
    setStartStopCaption(translate(u"929|&Stop"));
}

void EquipmentMonitor::NotifyStopped()
{
    setStartStopCaption(translate(u"3786|&Start"));
}

void EquipmentMonitor::EnableDisplayItems(bool enabled)
{
    m_displayItemsEnabled = enabled;
    emit displayItemsEnabledChanged(enabled);
}

QString EquipmentMonitor::GetRunTimeText(qint64 seconds)
{
    const qint64 hours = seconds / 3600;
    const qint64 minutes = seconds % 3600 / 60;
    const qint64 rest = seconds % 60;
    return QStringLiteral("%1:%2:%3")
        .arg(hours, 2, 10, QLatin1Char('0'))
        .arg(minutes, 2, 10, QLatin1Char('0'))
        .arg(rest, 2, 10, QLatin1Char('0'));
}

qint64 EquipmentMonitor::elapsedSeconds() const
{
    if (!m_startTime.isValid() || !m_lastWeldTime.isValid())
        return 0;
    return m_startTime.secsTo(m_lastWeldTime);
}

bool EquipmentMonitor::ShutDown()
{
    bool done = false;
    reportFailures(m_services.errors, "CorvaneUsw.ShutDown", [&] {
        m_configuration.rows.fill(0);
        m_alarms.clear();
        emit alarmsChanged();
        RefreshDisplay();
        EnableDisplayItems(true);
        // A monitor that was shut down must neither reconnect nor receive in the
        // background while its slot waits to be reused.
        m_timer.stop();
        m_backlogTimer.stop();
        m_link->close();
        m_link->setLinkState(LinkState::ShutDown);
        done = true;
    });
    return done;
}

LinkState EquipmentMonitor::linkState() const
{
    return m_link->linkState();
}

int EquipmentMonitor::spcBacklog() const
{
    return m_sampling->backlog();
}

bool EquipmentMonitor::SPCSamplingEnabled() const
{
    return m_sampling->Enabled();
}

// ---- Configuration -------------------------------------------------------------------

bool EquipmentMonitor::Load(const QString &xml)
{
    bool loaded = false;
    reportFailures(m_services.errors, "CorvaneUsw.Load", [&] {
        MonitorConfiguration configuration = m_configuration;
        const auto isCharacteristic = [](int number) {
            return number >= 1 && number <= kCharacteristicCount;
        };
        // A new welder shows all eight characteristics in their usual order; the
        // engineer takes out what the cell does not need.
        if (xml.isEmpty()) {
            for (int row = 0; row < kRowCount; ++row)
                m_configuration.rows[row] = row + 1;
        } else if (ConfigurationElement::read(xml, configuration, *m_sampling, isCharacteristic)) {
            m_configuration = configuration;
            m_link->setAddress(m_configuration.address);
            m_linkEvents.setLink(m_configuration.name, m_configuration.address);
        }
        m_link->setLinkState(LinkState::Stopped);
        RefreshDisplay();
        loaded = true;
    });
    return loaded;
}

QDomElement EquipmentMonitor::GetXMLNode() const
{
    m_xmlDocument = QDomDocument();
    QDomElement element = ConfigurationElement::write(m_xmlDocument, m_configuration, *m_sampling);
    m_xmlDocument.appendChild(element);
    return element;
}

void EquipmentMonitor::setEquipment(const QString &name, const QString &address)
{
    m_configuration.name = name;
    m_configuration.address = address;
    m_link->setAddress(address);
    m_linkEvents.setLink(name, address);
}

void EquipmentMonitor::setDataLogging(bool enabled, const QString &fileName)
{
    m_configuration.dataLoggingEnabled = enabled;
    m_configuration.dataLogFile = fileName;
}

int EquipmentMonitor::rowSelection(int row) const
{
    return row >= 0 && row < kRowCount ? m_configuration.rows[row] : 0;
}

void EquipmentMonitor::setRowSelection(int row, int characteristic)
{
    if (row < 0 || row >= kRowCount)
        return;
    const bool known = characteristic >= 1 && characteristic <= kCharacteristicCount;
    m_configuration.rows[row] = known ? characteristic : 0;
    RefreshDisplay();
}

bool EquipmentMonitor::lastWeldOutOfSpecification() const
{
    return m_totalWelds > 0 &&
           std::any_of(m_datasets.begin(), m_datasets.end(), [](const auto &dataset) {
               return dataset->HasSL() && dataset->ExceedsSpecifications();
           });
}

QList<QPair<QString, qint32>> EquipmentMonitor::LoadTests() const
{
    QList<QPair<QString, qint32>> entries;
    for (const auto &dataset : m_datasets)
        entries.append({dataset->Name, dataset->ID});
    return entries;
}

// ---- Data log ------------------------------------------------------------------------

void EquipmentMonitor::InitializeDataLogging()
{
    m_dataLog->InitializeDataLogging(m_configuration.dataLoggingEnabled,
                                     m_configuration.dataLogFile, *m_language);
}

void EquipmentMonitor::appendToDataLog(const CorvaneFUN26 &record)
{
    if (m_configuration.dataLoggingEnabled)
        m_dataLog->AppendFile(m_configuration.dataLogFile, m_recordText.format(record));
}

// ---- Captions and indicators ---------------------------------------------------------

void EquipmentMonitor::setStartStopCaption(const QString &caption)
{
    if (caption == m_startStopCaption)
        return;
    m_startStopCaption = caption;
    emit startStopCaptionChanged(caption);
}

void EquipmentMonitor::showConnectionLabel(const QString &label)
{
    if (label == m_connectionLabel)
        return;
    m_connectionLabel = label;
    emit connectionLabelChanged(label);
}

void EquipmentMonitor::showConnectionProblem(bool problem)
{
    if (problem == m_connectionProblem)
        return;
    m_connectionProblem = problem;
    emit connectionProblemChanged(problem);
}

void EquipmentMonitor::RefreshDisplay()
{
    emit displayRefreshRequested();
}

#pragma once

#include "monitor/AlarmList.h"
#include "monitor/ConfigurationElement.h"
#include "monitor/EquipmentLink.h"
#include "monitor/LinkEventLog.h"
#include "monitor/LinkState.h"
#include "monitor/MonitorServices.h"

#include "platform/RegionalFormat.h"
#include "platform/qlxLanguage.h"
#include "protocol/AlarmCodes.h"
#include "protocol/CorvaneFUN26.h"
#include "protocol/ReceiveBuffer.h"
#include "protocol/RecordFormatter.h"
#include "stats/DatasetCollection.h"

#include <QDateTime>
#include <QDomDocument>
#include <QDomElement>
#include <QObject>
#include <QString>
#include <QTimer>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>

class DataLog;
class SamplingSeam;
class WeldSimulator;

// The equipment monitor of one welder: it owns the link to the power supply, the
// receive buffer, the current weld record, the eight datasets, the alarm list, the
// counters, the data log and the SPC sampling object. It runs without any widget: the
// view that shows it listens to its signals and reads its properties, and forwards the
// user's commands to its operations. Its link reports what arrived and what happened
// through signals; the monitor never reads back from the link inside one of them.
class EquipmentMonitor : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString startStopCaption READ startStopCaption NOTIFY startStopCaptionChanged)
    Q_PROPERTY(QString connectionLabel READ connectionLabel NOTIFY connectionLabelChanged)
    Q_PROPERTY(bool connectionProblem READ connectionProblem NOTIFY connectionProblemChanged)
    Q_PROPERTY(bool displayItemsEnabled READ displayItemsEnabled NOTIFY displayItemsEnabledChanged)
    Q_PROPERTY(int spcBacklog READ spcBacklog NOTIFY spcBacklogChanged)

public:
    static constexpr int kRowCount = MonitorConfiguration::kRowCount;
    static constexpr int kCharacteristicCount = 8;
    static constexpr int kTimerIntervalMs = 100;

    explicit EquipmentMonitor(MonitorServices services, QObject *parent = nullptr);
    ~EquipmentMonitor() override;

    // Lifecycle. The language object must outlive the monitor.
    void Initialize(const qlxLanguage &language, int slotIndex);
    void StartStop();
    void StartDataCollection();
    void StopDataCollection();
    bool ShutDown();
    void NotifyStarted();
    void NotifyStopped();
    void EnableDisplayItems(bool enabled);
    static QString GetRunTimeText(qint64 seconds);

    int DriverState() const { return int(linkState()); }
    LinkState linkState() const;
    QString identifier() const { return m_identifier; }
    QString configurationName() const { return m_configuration.name; }
    bool SPCSamplingEnabled() const;
    bool debugMode() const { return m_services.debugMode; }

    // Configuration.
    bool Load(const QString &xml);
    QDomElement GetXMLNode() const;
    const MonitorConfiguration &configuration() const { return m_configuration; }
    // The alarms list's height as the engineer left it, kept with the configuration.
    void setAlarmListHeight(int pixels) { m_configuration.alarmListHeight = std::max(0, pixels); }
    QString address() const { return m_configuration.address; }
    // What the equipment and data logging dialogs hand back.
    void setEquipment(const QString &name, const QString &address);
    void setDataLogging(bool enabled, const QString &fileName);
    SamplingSeam &sampling() { return *m_sampling; }
    const SamplingSeam &sampling() const { return *m_sampling; }
    // Whether a value of the last weld lies beyond a specification limit of its
    // characteristic.
    bool lastWeldOutOfSpecification() const;

    // Display rows: the characteristic number (0 none, 1 to 8) each row shows. A change
    // refreshes the display, as a change of the row's selector does.
    int rowSelection(int row) const;
    void setRowSelection(int row, int characteristic);
    // The entries of a row selector: the datasets in collection order (name, number).
    QList<QPair<QString, qint32>> LoadTests() const;

    // Data stream.
    void receiveBytes(QByteArrayView bytes);
    // Processes every complete frame in the receive buffer.
    void ProcessDataStream();
    // Makes record the current record.
    CorvaneFUN26 &ResolveFunction26(const CorvaneFUN26 &record);
    void AddAlarmItems(qint32 cycleCount, qint32 alarmBits, const AlarmTable &alarmTexts);
    void InitializeDatasets();
    void AddDataset(qint32 number, const QString &name, const QString &unit);
    void RefreshDisplay();

    const ReceiveBuffer &receiveBuffer() const { return m_receiveBuffer; }
    const std::optional<CorvaneFUN26> &currentRecord() const { return m_currentRecord; }
    const DatasetCollection &datasets() const { return m_datasets; }
    const AlarmList &alarms() const { return m_alarms; }
    QString alarmsText() const { return m_alarms.text(); }
    qint32 totalWelds() const { return m_totalWelds; }
    qint32 totalAlarms() const { return m_alarms.totalAlarms(); }
    QDateTime lastWeldTime() const { return m_lastWeldTime; }
    QDateTime startTime() const { return m_startTime; }
    // Whole seconds from the start of collection to the last weld: the run time shown.
    qint64 elapsedSeconds() const;

    // Equipment link.
    QString GetSocketState() const;
    void Timer1_Timer();
    void Winsock1_Connect();
    void Winsock1_Close();
    void Winsock1_DataArrival(const QByteArray &bytes);
    void Winsock1_Error(qint32 number, const QString &description, qint32 statusCode);
    void MSComm1_OnComm(const QByteArray &bytes);
    bool timerActive() const { return m_timer.isActive(); }

    // Simulated data.
    void RandomizeValues(CorvaneFUN26 &record);
    double RandomizeDouble(double value);

    QString startStopCaption() const { return m_startStopCaption; }
    QString connectionLabel() const { return m_connectionLabel; }
    bool connectionProblem() const { return m_connectionProblem; }
    bool displayItemsEnabled() const { return m_displayItemsEnabled; }
    // Subgroups of this welder that wait in the outbox for the SPC database.
    int spcBacklog() const;
    const qlxLanguage &language() const { return *m_language; }

signals:
    void displayRefreshRequested();
    void startStopCaptionChanged(const QString &caption);
    void connectionLabelChanged(const QString &label);
    void connectionProblemChanged(bool problem);
    void displayItemsEnabledChanged(bool enabled);
    void spcBacklogChanged(int backlog);
    void alarmsChanged();
    // A weld record was decoded and processed (after the simulated values in debug mode).
    void weldProcessed(const CorvaneFUN26 &record);
    void linkStateChanged(LinkState state);

private:
    void ProcessRecord(CorvaneFUN26 &record);
    // Processes at most `limit` records; true when it stopped at the limit.
    bool drainRecords(qsizetype limit);
    void receiveArrival(const char *location, const QByteArray &bytes);
    void drainBacklog();
    void connectLink();
    void InitializeDataLogging();
    void showConnectionLabel(const QString &label);
    void showConnectionProblem(bool problem);
    void startCollection();
    void stopCollection();
    void reloadSpecificationLimits();
    // An address that cannot work: shown on the tab, and as a refused port.
    void refuseAddress(const QString &reason);
    // Written to the event log with the configuration's name and told to the engineer.
    void portRefused(const QString &reason);
    void appendToDataLog(const CorvaneFUN26 &record);
    void setStartStopCaption(const QString &caption);
    QString translate(QStringView token) const;

    MonitorServices m_services;
    QString m_identifier;
    qlxLanguage m_defaultLanguage;
    const qlxLanguage *m_language = &m_defaultLanguage;
    RegionalFormat m_format;
    RecordFormatter m_recordText{m_format};

    MonitorConfiguration m_configuration;
    // The document of the last element GetXMLNode built, kept so that the element has
    // an owner document for as long as the caller may import it.
    mutable QDomDocument m_xmlDocument;
    std::unique_ptr<SamplingSeam> m_sampling;
    std::unique_ptr<EquipmentLink> m_link;
    std::unique_ptr<DataLog> m_dataLog;
    std::unique_ptr<WeldSimulator> m_ownSimulator;
    WeldSimulator *m_simulator = nullptr;
    LinkEventLog m_linkEvents;
    QTimer m_timer;
    // Continues a backlog of frames after the event loop has had its turn.
    QTimer m_backlogTimer;

    ReceiveBuffer m_receiveBuffer;
    std::optional<CorvaneFUN26> m_currentRecord;
    DatasetCollection m_datasets;
    AlarmList m_alarms;
    qint32 m_totalWelds = 0;
    QDateTime m_lastWeldTime;
    QDateTime m_startTime;

    QString m_startStopCaption;
    QString m_connectionLabel;
    bool m_connectionProblem = false;
    bool m_displayItemsEnabled = true;
};

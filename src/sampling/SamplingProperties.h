#pragma once

#include "LiveRuleCheck.h"
#include "SubgroupRecord.h"

#include "monitor/SamplingSeam.h"
#include "platform/spc/Subgroup.h"
#include "protocol/AlarmCodes.h"

#include <QDateTime>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class Clock;
class DatabaseSupport;
class ErrorReport;
class EventLog;
class MessageBoxes;
class PartSelector;
class QObject;
class SubgroupOutbox;

namespace qlaDatabase6 {
class Database;
}

// What a monitor's sampling object is built with. The services behind the references
// must outlive it.
struct SamplingServices
{
    ErrorReport &errors;
    const Clock &clock;
    DatabaseSupport &support;
    MessageBoxes &messageBoxes;
    // The program's data folder: an empty data source name stands for spc.db in it.
    QString dataFolder;
    // Maker of the connection to the SPC database; the SQL connection when none is given.
    std::function<std::unique_ptr<qlaDatabase6::Database>()> makeDatabase = {};
    // The part selection dialog; without one a part cannot be chosen at run time.
    PartSelector *partSelector = nullptr;
    // Where subgroups wait while their database cannot take them. Without an outbox a
    // subgroup that cannot be stored is reported and lost, and collection does not
    // start without a connection.
    SubgroupOutbox *outbox = nullptr;
    // Where the database's going away and the forwarding of the backlog are noted.
    EventLog *eventLog = nullptr;
};

// One monitor's SPC sampling: the settings kept in the "Sampling" element of its
// configuration (whether sampling is on, the period, what is collected, the alarm
// logging, the database, the part and the process), its connection to the SPC
// database, and the running collection. While collecting, every weld counts into the
// current period; when the period has passed, one subgroup goes to the database with
// the newest values of the sampled characteristics, the weld rate and the alarms of the
// period. Periods follow each other without drift: each starts where the last was
// scheduled to end, however late the timer closed it.
//
// With an outbox, a subgroup that the database cannot take (no connection, a server
// that went away, a file that cannot be written) waits there, and so does every later
// one while older ones wait, so the history stays in time order. From the timer ticks
// the backlog is forwarded: at once after the database connects, otherwise with a
// back-off from seconds up to a few minutes. Collection starts whether the database is
// there or not; its limits are read once it answers.
//
// Every operation reports its own failures (object "SamplingProperties") and leaves the
// collection as it was; none of them throws to the monitor.
class SamplingProperties : public SamplingSeam
{
    Q_OBJECT

public:
    static constexpr int kFirstRetrySeconds = 2;
    static constexpr int kLongestRetrySeconds = 240;

    static constexpr qint32 kDefaultSamplingPeriod = 300;
    // Collection type that samples every characteristic, shown in a row or not.
    static constexpr qint32 kCollectEveryCharacteristic = 1;
    // The source every subgroup of this program is tagged with.
    static constexpr const char *kSourceTag = "Corvane";

    explicit SamplingProperties(SamplingServices services);
    ~SamplingProperties() override;
    SamplingProperties(const SamplingProperties &) = delete;
    SamplingProperties &operator=(const SamplingProperties &) = delete;

    // ---- Settings ----
    bool Enabled() const override { return m_enabled; }
    void setEnabled(bool enabled) { m_enabled = enabled; }
    QString Part() const override { return m_part; }
    void setPart(const QString &part) { m_part = part; }
    bool AllowPartReselect() const { return m_allowPartReselect; }
    void setAllowPartReselect(bool allow) { m_allowPartReselect = allow; }
    QString Process() const override { return m_process; }
    void setProcess(const QString &process) { m_process = process; }
    // Seconds.
    qint32 SamplingPeriod() const { return m_samplingPeriod; }
    void setSamplingPeriod(qint32 seconds) { m_samplingPeriod = seconds; }
    qint32 CollectionType() const { return m_collectionType; }
    void setCollectionType(qint32 type) { m_collectionType = type; }
    qint32 SubgroupSize() const { return m_subgroupSize; }
    void setSubgroupSize(qint32 size) { m_subgroupSize = size; }
    bool EnableAlarmLogging() const { return m_enableAlarmLogging; }
    void setEnableAlarmLogging(bool enable) { m_enableAlarmLogging = enable; }
    // Bits of the alarm groups that are logged: 1 Reject Part, 2 Suspect Part, 4 No
    // Cycle, 8 Overload, 16 Equipment Failure, 32 Cycle Modified, 64 Note.
    qint32 LogAlarms() const { return m_logAlarms; }
    void setLogAlarms(qint32 groups) { m_logAlarms = groups; }

    // The database's data source name. Setting an empty one chooses the default.
    QString DataSourceName() const override;
    bool DataSourceConnected() const override;
    void setDataSourceName(const QString &dsn);
    // spc.db in the data folder.
    QString defaultDataSourceName() const;

    qlaDatabase6::Database &database() { return *m_database; }
    // A connection of the same kind to another source (an empty name: the default), for
    // looking at a source before it replaces this one.
    std::unique_ptr<qlaDatabase6::Database> makeDatabase(const QString &dsn) const;

    // ---- Configuration ----
    QDomElement GetXMLNode(QDomDocument &document) override;
    void SetXMLNode(const QDomElement &configuration) override;

    // ---- Collection ----
    // False only when sampling is on and cannot start (no connection, no part, no
    // process): the user has been told why, and the monitor must not run. Sampling that
    // is off, or a workstation without the database library, lets the monitor run
    // without sampling.
    bool StartCollection(const qlxLanguage &language) override;
    // Saves the period so far and ends the collection.
    void StopCollection(const qlxLanguage &language, const DatasetCollection &datasets) override;
    void AddToSample(const qlxLanguage &language, const CorvaneFUN26 &record) override;
    // Closes the current period when its end has come: one period per call, so after a
    // long pause each tick closes the next overdue one.
    void ProcessSamplePeriod(const qlxLanguage &language,
                             const DatasetCollection &datasets) override;
    void InitializeSpecificationLimits(DatasetCollection &datasets) override;

    // The part button: lets the user choose another part through the part selection
    // dialog. Refused with a beep while collecting, when reselection is not allowed or
    // when there is no dialog. True when the part changed.
    bool SelectPart(QObject *owner) override;

    QList<RuleViolation> takeRuleViolations() override;

    // ---- Running state ----
    bool Collecting() const { return m_collecting; }
    const QDateTime &PeriodStart() const { return m_periodStart; }
    const QDateTime &NextSampleTime() const { return m_nextSampleTime; }
    const QString &PartGroup() const { return m_partGroup; }
    const QString &ProcessGroup() const { return m_processGroup; }
    const QString &SourceTag() const { return m_sourceTag; }
    const SubgroupRecord &subgroupRecord() const { return m_subgroupRecord; }
    int backlog() const override { return qMax(m_backlog, 0); }

private:
    struct AlarmLogGroup
    {
        qint32 logBit;
        AlarmGroup group;
        const char16_t *label;
    };
    static const std::array<AlarmLogGroup, SubgroupRecord::kGroupCount> kAlarmLogOrder;

    bool libraryAvailable();
    // Connects when not connected; a connection that fails is reported under location
    // with the database's reason. Returns whether it is connected.
    bool ensureConnected(const char *location);
    void refuseStart(const qlxLanguage &language, QStringView token);

    void readSettings(const QDomElement &sampling);
    void applyDataSourceName(const QString &dsn);

    void SetNextSamplingPeriod();
    void ResolvePartGroupFromPart();
    void ResolveProcessGroupFromProcess();
    void AccumulateErrorCodes(const CorvaneFUN26 &record);
    void SaveSubgroup(const qlxLanguage &language, const DatasetCollection &datasets);
    // Stores the finished subgroup, or queues it behind the backlog; true when stored.
    bool deliverSubgroup();
    bool storeNow(QString &failure);
    // Forwards the backlog when its retry time has come.
    void forwardBacklog();
    void noteDatabaseAway(const QString &reason);
    void noteEvent(const QString &message, qint32 number, const QString &description);
    void setBacklog(int backlog);
    void InitializeSubgroup();
    void SaveVariableCharacteristics(const DatasetCollection &datasets);
    void SaveDataRate(const qlxLanguage &language);
    void SaveAlarmCodes(const qlxLanguage &language);
    void SetAlarmTestItem(const QString &label, const SubgroupRecord::AlarmCounters &counters,
                          const AlarmTable &alarmTexts, const qlxLanguage &language);

    SamplingServices m_services;

    bool m_enabled = false;
    std::unique_ptr<qlaDatabase6::Database> m_database;
    QString m_part;
    bool m_allowPartReselect = false;
    QString m_process;
    qint32 m_samplingPeriod = kDefaultSamplingPeriod;
    qint32 m_collectionType = 0;
    qint32 m_subgroupSize = 1;
    bool m_enableAlarmLogging = false;
    qint32 m_logAlarms = 0;

    SubgroupRecord m_subgroupRecord;
    QDateTime m_periodStart;
    QDateTime m_nextSampleTime;
    QString m_partGroup;
    QString m_processGroup;
    QString m_sourceTag;
    bool m_collecting = false;
    // Made on the first save and reused for every period.
    std::optional<qlaDatabase6::Subgroup> m_subgroup;
    LiveRuleCheck m_ruleCheck;
    QList<RuleViolation> m_ruleViolations;

    // Subgroups of this data source in the outbox; -1 until the outbox was looked at.
    int m_backlog = -1;
    QDateTime m_nextForward;
    int m_retrySeconds = kFirstRetrySeconds;
    // The database's going away was noted and its return not yet.
    bool m_databaseAway = false;
    int m_forwardedSinceAway = 0;
};

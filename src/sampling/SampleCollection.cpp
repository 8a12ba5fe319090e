// The collection half of SamplingProperties: the sampling periods of a running monitor
// and the subgroup that each period leaves in the SPC database.

#include "DatabaseSupport.h"
#include "SamplingProperties.h"

#include "outbox/OutboxForwarder.h"
#include "outbox/SubgroupOutbox.h"
#include "platform/Clock.h"
#include "platform/ErrorPassing.h"
#include "platform/EventLog.h"
#include "platform/MessageBoxes.h"
#include "platform/qlxLanguage.h"
#include "platform/spc/Database.h"
#include "stats/DatasetCollection.h"

#include <QUuid>

#include <cstdlib>

using qlaDatabase6::SubgroupHeader;
using qlaDatabase6::TestItem;

// The alarm groups in the order their items follow each other in a subgroup, with the
// LogAlarms bit that selects each and the item's name.
const std::array<SamplingProperties::AlarmLogGroup, SubgroupRecord::kGroupCount>
    SamplingProperties::kAlarmLogOrder = {{
        {32, AlarmGroup::CycleModified, u"6457|Cycle Modified Alarms"},
        {16, AlarmGroup::EquipmentFailure, u"6458|Equipment Failure Alarms"},
        {4, AlarmGroup::NoCycle, u"6459|No Cycle Alarms"},
        {64, AlarmGroup::Note, u"6460|Note Alarms"},
        {8, AlarmGroup::Overload, u"6461|Overload Alarms"},
        {1, AlarmGroup::RejectPart, u"6462|Reject Part Alarms"},
        {2, AlarmGroup::SuspectPart, u"6463|Suspect Part Alarms"},
    }};

// ---- Start and stop ------------------------------------------------------------------

bool SamplingProperties::StartCollection(const qlxLanguage &language)
{
    bool mayRun = false;
    reportFailures(m_services.errors, "SamplingProperties.StartCollection", [&] {
        // Without the database library, or with sampling off, the monitor runs without
        // sampling.
        if (!libraryAvailable() || !m_enabled) {
            mayRun = true;
            return;
        }
        // With an outbox the welder collects whether the database is there or not: its
        // subgroups wait until it is. Without one, the user is told; the database's own
        // reason would only be a second message for the same failure.
        const bool connected = ensureConnected(nullptr);
        if (!connected && !m_services.outbox) {
            refuseStart(language, u"5298|Unable To Connect");
            return;
        }
        m_part = m_part.trimmed();
        if (m_part.isEmpty()) {
            refuseStart(language, u"1844|NO PART! A part must be selected before continuing.");
            return;
        }
        m_process = m_process.trimmed();
        if (m_process.isEmpty()) {
            refuseStart(language,
                        u"1845|NO PROCESS! A process must be selected before continuing.");
            return;
        }
        // Groups that cannot be looked up now are given to the subgroups when they are
        // stored.
        m_partGroup.clear();
        m_processGroup.clear();
        if (connected) {
            ResolvePartGroupFromPart();
            ResolveProcessGroupFromProcess();
        } else {
            noteDatabaseAway(m_database->lastErrorText());
        }
        m_sourceTag = QLatin1String(kSourceTag);

        m_subgroupRecord.clear();
        m_collecting = true;
        m_nextSampleTime = m_services.clock.now();
        SetNextSamplingPeriod();
        mayRun = true;
    });
    return mayRun;
}

void SamplingProperties::refuseStart(const qlxLanguage &language, QStringView token)
{
    m_services.messageBoxes.critical(language.Translate(u"6337|SPC Sampling"),
                                     language.Translate(token) + QStringLiteral("\r\n\r\n") +
                                         DataSourceName());
}

void SamplingProperties::StopCollection(const qlxLanguage &language,
                                        const DatasetCollection &datasets)
{
    reportFailures(m_services.errors, "SamplingProperties.StopCollection", [&] {
        if (!libraryAvailable() || !m_collecting)
            return;
        SaveSubgroup(language, datasets);
        m_collecting = false;
    });
}

void SamplingProperties::ResolvePartGroupFromPart()
{
    passOn("SamplingProperties.ResolvePartGroupFromPart",
           [&] { m_partGroup = m_services.support.ResolvePartGroup(*m_database, m_part); });
}

void SamplingProperties::ResolveProcessGroupFromProcess()
{
    passOn("SamplingProperties.ResolveProcessGroupFromProcess", [&] {
        m_processGroup = m_services.support.ResolveProcessGroup(*m_database, m_process);
    });
}

// ---- Periods -------------------------------------------------------------------------

void SamplingProperties::SetNextSamplingPeriod()
{
    // Counted from where the last period was scheduled to end, not from when it was
    // saved: the timer's lateness never shifts the periods.
    m_periodStart = m_nextSampleTime;
    m_nextSampleTime = m_periodStart.addSecs(m_samplingPeriod);
}

void SamplingProperties::AddToSample(const qlxLanguage &language, const CorvaneFUN26 &record)
{
    Q_UNUSED(language) // the alarm texts are translated when the period is saved
    if (!m_collecting)
        return;
    reportFailures(m_services.errors, "SamplingProperties.AddToSample", [&] {
        m_subgroupRecord.addWeld();
        AccumulateErrorCodes(record);
    });
}

void SamplingProperties::AccumulateErrorCodes(const CorvaneFUN26 &record)
{
    passOn("SamplingProperties.AccumulateErrorCodes",
           [&] { m_subgroupRecord.AccumulateErrorCodes(record); });
}

void SamplingProperties::ProcessSamplePeriod(const qlxLanguage &language,
                                             const DatasetCollection &datasets)
{
    reportFailures(m_services.errors, "SamplingProperties.ProcessSamplePeriod", [&] {
        if (!libraryAvailable())
            return;
        // The backlog goes on being forwarded while the monitor is stopped: it may be
        // from an earlier run.
        forwardBacklog();
        if (!m_collecting)
            return;
        if (m_services.clock.now() < m_nextSampleTime)
            return;
        SaveSubgroup(language, datasets);
        SetNextSamplingPeriod();
    });
}

// ---- Saving a period -----------------------------------------------------------------

void SamplingProperties::SaveSubgroup(const qlxLanguage &language,
                                      const DatasetCollection &datasets)
{
    if (m_subgroupRecord.WeldCount <= 0)
        return;
    // Each step reports its own failure and the save goes on with the next, so that a
    // characteristic that cannot be read does not cost the period its other values.
    // Only a subgroup that could not be started is not filled, lest the previous
    // period's items be stored again.
    if (reportFailures(m_services.errors, "SamplingProperties.InitializeSubgroup",
                       [&] { InitializeSubgroup(); })) {
        reportFailures(m_services.errors, "SamplingProperties.SaveVariableCharacteristics",
                       [&] { SaveVariableCharacteristics(datasets); });
        reportFailures(m_services.errors, "SamplingProperties.SaveDataRate",
                       [&] { SaveDataRate(language); });
        reportFailures(m_services.errors, "SamplingProperties.SaveAlarmCodes",
                       [&] { SaveAlarmCodes(language); });
        const bool stored = deliverSubgroup();
        emit subgroupCompleted(*m_subgroup, !stored);
    }
    m_subgroupRecord.clear();
}

bool SamplingProperties::deliverSubgroup()
{
    if (!m_services.outbox) {
        return reportFailures(m_services.errors, "SamplingProperties.SaveSubgroup",
                              [&] { storeSubgroup(*m_database, *m_subgroup); });
    }
    const QString source = DataSourceName();
    bool stored = false;
    reportFailures(m_services.errors, "SamplingProperties.SaveSubgroup", [&] {
        QString failure;
        // While older subgroups wait, a new one waits behind them.
        if (m_services.outbox->count(source) == 0 && storeNow(failure)) {
            stored = true;
            return;
        }
        m_services.outbox->enqueue(source, *m_subgroup, m_services.clock.now());
        if (!failure.isEmpty())
            noteDatabaseAway(failure);
        setBacklog(m_services.outbox->count(source));
    });
    return stored;
}

bool SamplingProperties::storeNow(QString &failure)
{
    if (!ensureConnected(nullptr)) {
        failure = m_database->lastErrorText();
        return false;
    }
    try {
        storeSubgroup(*m_database, *m_subgroup);
        return true;
    } catch (const ProgramError &error) {
        failure = error.description();
        return false;
    }
}

// ---- The backlog ---------------------------------------------------------------------

void SamplingProperties::forwardBacklog()
{
    if (!m_services.outbox || !m_enabled)
        return;
    if (m_backlog < 0 && !(m_nextForward.isValid() && m_services.clock.now() < m_nextForward)) {
        try {
            setBacklog(m_services.outbox->count(DataSourceName()));
        } catch (const ProgramError &error) {
            noteDatabaseAway(error.description());
            return;
        }
    }
    if (m_backlog < 0)
        return;
    const QDateTime now = m_services.clock.now();
    if (m_backlog == 0 || (m_nextForward.isValid() && now < m_nextForward))
        return;
    ForwardResult result;
    try {
        result = forwardOutbox(*m_services.outbox, *m_database);
    } catch (const ProgramError &error) {
        // The outbox file itself failed: retried like a database that is away, rather
        // than reported on every tick.
        result.failure = error.description();
        result.remaining = m_backlog;
    }
    m_forwardedSinceAway += result.forwarded;
    setBacklog(result.remaining);
    if (!result.failure.isEmpty()) {
        noteDatabaseAway(result.failure);
        m_nextForward = now.addSecs(m_retrySeconds);
        m_retrySeconds = qMin(m_retrySeconds * 2, kLongestRetrySeconds);
        return;
    }
    m_retrySeconds = kFirstRetrySeconds;
    m_nextForward = QDateTime();
    if (m_databaseAway && result.remaining == 0) {
        m_databaseAway = false;
        noteEvent(
            QStringLiteral("SPC Backlog Forwarded"), m_forwardedSinceAway,
            QStringLiteral("%1 subgroup(s) forwarded from the outbox").arg(m_forwardedSinceAway));
        m_forwardedSinceAway = 0;
    }
}

void SamplingProperties::noteDatabaseAway(const QString &reason)
{
    if (m_nextForward.isNull())
        m_nextForward = m_services.clock.now().addSecs(m_retrySeconds);
    if (m_databaseAway)
        return;
    m_databaseAway = true;
    m_forwardedSinceAway = 0;
    noteEvent(QStringLiteral("SPC Database Away"), ProgramError::kProgramErrorNumber, reason);
}

void SamplingProperties::noteEvent(const QString &message, qint32 number,
                                   const QString &description)
{
    if (!m_services.eventLog)
        return;
    reportFailures(m_services.errors, "SamplingProperties.WriteEventLog", [&] {
        // One line each: a server's reason may span several.
        m_services.eventLog->WriteEventLog(QStringLiteral("Main"), message, number,
                                           description.simplified(), DataSourceName());
    });
}

void SamplingProperties::setBacklog(int backlog)
{
    if (backlog == m_backlog)
        return;
    m_backlog = backlog;
    emit backlogChanged(backlog);
}

void SamplingProperties::InitializeSubgroup()
{
    if (!m_subgroup)
        m_subgroup.emplace();
    SubgroupHeader header;
    header.key = QUuid::createUuid().toString(QUuid::WithoutBraces);
    header.flag = true;
    header.valueCount = m_subgroupRecord.WeldCount;
    header.dateTime = m_nextSampleTime;
    header.partGroup = m_partGroup;
    header.part = m_part;
    header.processGroup = m_processGroup;
    header.process = m_process;
    header.sourceTag = m_sourceTag;
    m_subgroup->setHeader(header);
}

void SamplingProperties::SaveVariableCharacteristics(const DatasetCollection &datasets)
{
    const qint32 weldCount = m_subgroupRecord.WeldCount;
    const qint32 values = m_subgroupSize < weldCount ? m_subgroupSize : weldCount;
    for (const std::unique_ptr<Dataset> &dataset : datasets) {
        if (!dataset->SampleEnabled && m_collectionType != kCollectEveryCharacteristic)
            continue;
        m_subgroup->AddTestItem(dataset->Name, TestItem::kMeasuredValue);
        // Newest first: sample 1 is the last weld of the period.
        const qint32 newest = dataset->Count();
        for (qint32 i = 0; i < values; ++i)
            m_subgroup->addValue(i + 1, dataset->GetValue(newest - i));
    }
}

void SamplingProperties::SaveDataRate(const qlxLanguage &language)
{
    const qint64 elapsed = std::llabs(m_periodStart.secsTo(m_nextSampleTime));
    m_subgroup->AddTestItem(language.Translate(u"6361|Data Rate"), TestItem::kMeasuredValue);
    if (elapsed == 0)
        throw ProgramError::divisionByZero(QStringLiteral("SamplingProperties.SaveDataRate"));
    // Welds per minute over the period.
    m_subgroup->addValue(1, double(m_subgroupRecord.WeldCount) / (double(elapsed) / 60.0));
}

void SamplingProperties::SaveAlarmCodes(const qlxLanguage &language)
{
    if (!m_enableAlarmLogging || m_logAlarms == 0)
        return;
    for (const AlarmLogGroup &entry : kAlarmLogOrder) {
        if (m_logAlarms & entry.logBit)
            SetAlarmTestItem(language.Translate(entry.label),
                             m_subgroupRecord.counters(entry.group),
                             CorvaneUSWSupport::AlarmCodes(entry.group), language);
    }
}

void SamplingProperties::SetAlarmTestItem(const QString &label,
                                          const SubgroupRecord::AlarmCounters &counters,
                                          const AlarmTable &alarmTexts, const qlxLanguage &language)
{
    m_subgroup->AddTestItem(label, TestItem::kAlarmList);
    // An alarm is listed once however often it came: the value says it was present.
    qint32 listed = 0;
    for (std::size_t bit = 0; bit < counters.size(); ++bit) {
        if (counters[bit] != 0 && !alarmTexts[bit].isEmpty())
            m_subgroup->addValue(++listed, 1.0, language.Translate(alarmTexts[bit]));
    }
    // A quiet group still gets its entry, so that every logged group appears in every
    // subgroup.
    if (listed == 0)
        m_subgroup->addValue(1, 0.0);
}

// The equipment monitor's data path: from the bytes of the link through the frame
// parser to the datasets, the alarm list, the counters, the data log and sampling.

#include "EquipmentMonitor.h"

#include "CharacteristicSteps.h"
#include "DataLog.h"
#include "SamplingSeam.h"
#include "WeldSimulator.h"

#include "platform/Clock.h"
#include "platform/ErrorPassing.h"
#include "platform/EventLog.h"
#include "protocol/CorvaneParser.h"
#include "protocol/CorvaneUSWSupport.h"
#include "protocol/FrameSync.h"

using FrameScanner::FrameStatus;

#include <limits>

namespace {

struct Characteristic
{
    qint32 number;
    const char16_t *name;
    enum Unit { Seconds, Joules, Distance, Percent, Force } unit;
};

// The eight characteristics in collection order: number, name and unit.
constexpr Characteristic kCharacteristics[] = {
    {1, u"6007|Weld Time", Characteristic::Seconds},
    {2, u"6008|Energy", Characteristic::Joules},
    {3, u"6012|Total Absolute", Characteristic::Distance},
    {4, u"6010|Weld Collapse", Characteristic::Distance},
    {5, u"6011|Total Collapse", Characteristic::Distance},
    {6, u"6464|Velocity", Characteristic::Distance}, // the bare distance unit, by design
    {7, u"6009|Peak Power", Characteristic::Percent},
    {8, u"6013|Weld Force", Characteristic::Force},
};

// The value of a record that characteristic `number` takes; nothing for other numbers.
std::optional<double> characteristicValue(const CorvaneFUN26 &record, qint32 number)
{
    switch (number) {
    case 1:
        return record.ActualWeldTime;
    case 2:
        return record.TotalEnergy;
    case 3:
        return record.ActualDistance;
    case 4:
        return record.ActualWeldCollapse;
    case 5:
        return record.ActualTotalCollapse;
    case 6:
        return record.ActualVelocity;
    case 7:
        return record.PeakPower;
    case 8:
        return record.WeldForceEnd;
    default:
        return std::nullopt;
    }
}

// The order in which a record's alarm groups are listed.
constexpr AlarmGroup kListedGroups[] = {AlarmGroup::CycleModified, AlarmGroup::EquipmentFailure,
                                        AlarmGroup::NoCycle,       AlarmGroup::Note,
                                        AlarmGroup::Overload,      AlarmGroup::RejectPart,
                                        AlarmGroup::SuspectPart};

constexpr char kProcessDataStream[] = "CorvaneUsw.ProcessDataStream";

// Frames one pass over an arrival takes before the event loop gets its turn again: a
// few milliseconds of work with a data log.
constexpr qsizetype kRecordsPerPass = 256;

} // namespace

// ---- Datasets ------------------------------------------------------------------------

void EquipmentMonitor::InitializeDatasets()
{
    passOn("CorvaneUsw.InitializeDatasets", [&] {
        m_currentRecord.reset();
        m_totalWelds = 0;
        m_datasets = DatasetCollection();
        const bool us = m_services.measurementSystem == MeasurementSystem::US;
        for (const Characteristic &characteristic : kCharacteristics) {
            QString unit;
            switch (characteristic.unit) {
            case Characteristic::Seconds:
                unit = translate(u"1765|sec");
                break;
            case Characteristic::Joules:
                unit = translate(u"6063|joules");
                break;
            case Characteristic::Distance:
                unit = translate(us ? QStringView(u"642|inches") : QStringView(u"6064|mm"));
                break;
            case Characteristic::Percent:
                unit = QStringLiteral("%");
                break;
            case Characteristic::Force:
                unit = us ? translate(u"6360|LB") : QStringLiteral("N");
                break;
            }
            AddDataset(characteristic.number, translate(characteristic.name), unit);
        }
        // The characteristics shown in the rows are the ones sampled.
        for (const int number : m_configuration.rows) {
            if (Dataset *dataset = m_datasets.find(DatasetCollection::keyFor(number)))
                dataset->SampleEnabled = true;
        }
    });
}

void EquipmentMonitor::AddDataset(qint32 number, const QString &name, const QString &unit)
{
    passOn("CorvaneUsw.AddDataset", [&] {
        auto dataset = std::make_unique<Dataset>(m_services.errors);
        dataset->setValueStep(characteristicStep(number, m_services.measurementSystem));
        dataset->setValueBound(m_services.valueBound);
        dataset->ID = number;
        dataset->Name = name;
        dataset->Unit = unit;
        m_datasets.Add(std::move(dataset), DatasetCollection::keyFor(number));
    });
}

// ---- Data stream ---------------------------------------------------------------------

void EquipmentMonitor::receiveBytes(QByteArrayView bytes)
{
    CorvaneUSWSupport::AppendBytes(m_receiveBuffer, bytes);
    // Bytes in front of the first frame start can never become part of a frame; dropping
    // them at once keeps a link that sends only garbage from filling the buffer.
    FrameSync::discardUnframedLead(m_receiveBuffer);
}

void EquipmentMonitor::ProcessDataStream()
{
    reportFailures(m_services.errors, kProcessDataStream,
                   [&] { drainRecords(std::numeric_limits<qsizetype>::max()); });
}

bool EquipmentMonitor::drainRecords(qsizetype limit)
{
    const CorvaneParser parser(m_services.measurementSystem, m_services.clock);
    CorvaneFUN26 record;
    for (qsizetype taken = 0; taken < limit; ++taken) {
        const FrameStatus status = parser.next(m_receiveBuffer, record);
        switch (status) {
        case FrameStatus::WeldRecord:
            ProcessRecord(ResolveFunction26(record));
            continue;
        case FrameStatus::BadEndMarker:
        case FrameStatus::EndBeforeBuffer: {
            // A corrupted frame: report it once, step past its frame start and go on
            // with what follows, so one bad frame never stops the link.
            ProgramError error = CorvaneParser::frameError(status);
            error.addSource(QLatin1String(kProcessDataStream));
            m_services.errors.Show(QLatin1String(kProcessDataStream), error.number(),
                                   error.description(), error.source());
            FrameSync::dropBadFrameStart(m_receiveBuffer);
            FrameSync::discardUnframedLead(m_receiveBuffer);
            continue;
        }
        case FrameStatus::NeedMoreBytes:
        case FrameStatus::OtherFunction:
            // No complete frame left, or a frame of another function: this arrival is done.
            return false;
        }
    }
    return true;
}

void EquipmentMonitor::receiveArrival(const char *location, const QByteArray &bytes)
{
    reportFailures(m_services.errors, location, [&] {
        receiveBytes(bytes);
        if (!m_backlogTimer.isActive())
            drainBacklog();
    });
}

void EquipmentMonitor::drainBacklog()
{
    reportFailures(m_services.errors, kProcessDataStream, [&] {
        // A link that floods must not keep the event loop to itself: one pass takes a
        // bounded number of frames, and the rest waits until the timers have had their
        // turn. Meanwhile the link is paused, so that the sender is held back instead of
        // the backlog growing without bound.
        const bool more = drainRecords(kRecordsPerPass);
        m_link->setPaused(more);
        if (more)
            m_backlogTimer.start();
    });
}

CorvaneFUN26 &EquipmentMonitor::ResolveFunction26(const CorvaneFUN26 &record)
{
    m_currentRecord = record;
    return *m_currentRecord;
}

void EquipmentMonitor::ProcessRecord(CorvaneFUN26 &record)
{
    if (m_services.debugMode)
        RandomizeValues(record);

    for (const auto &dataset : m_datasets) {
        if (const std::optional<double> value = characteristicValue(record, dataset->ID))
            dataset->AddValue(*value);
    }

    bool alarmsAdded = false;
    for (const AlarmGroup group : kListedGroups) {
        const qint32 word = alarmWord(record, group);
        if (word != 0) {
            const qint32 before = m_alarms.totalAlarms();
            AddAlarmItems(record.CycleCount, word, CorvaneUSWSupport::AlarmCodes(group));
            alarmsAdded = alarmsAdded || m_alarms.totalAlarms() != before;
        }
    }
    if (alarmsAdded)
        emit alarmsChanged();

    if (m_totalWelds == std::numeric_limits<qint32>::max())
        throw ProgramError::overflow(QLatin1String(kProcessDataStream));
    ++m_totalWelds;
    m_lastWeldTime = m_services.clock.now();

    RefreshDisplay();
    appendToDataLog(record);
    m_sampling->AddToSample(*m_language, record);
    emit weldProcessed(record);
}

void EquipmentMonitor::AddAlarmItems(qint32 cycleCount, qint32 alarmBits,
                                     const AlarmTable &alarmTexts)
{
    m_alarms.AddAlarmItems(cycleCount, alarmBits, alarmTexts, *m_language);
}

// ---- Link events ---------------------------------------------------------------------

QString EquipmentMonitor::GetSocketState() const
{
    return m_link->GetSocketState(*m_language);
}

void EquipmentMonitor::Timer1_Timer()
{
    reportFailures(m_services.errors, "CorvaneUsw.Timer1_Timer", [&] {
        m_sampling->ProcessSamplePeriod(*m_language, m_datasets);
        m_link->tick(m_lastWeldTime, *m_language);
    });
}

void EquipmentMonitor::Winsock1_Connect()
{
    reportFailures(m_services.errors, "CorvaneUsw.Winsock1_Connect", [&] {
        NotifyStarted();
        m_linkEvents.restored();
    });
}

void EquipmentMonitor::Winsock1_Close()
{
    reportFailures(m_services.errors, "CorvaneUsw.Winsock1_Close", [&] {
        // The power supply closing a TCP connection is left to the timer's reconnect
        // rules; a serial device that went away is shown and logged here.
        if (!m_link->serialPortLost())
            return;
        showConnectionLabel(GetSocketState());
        showConnectionProblem(true);
        m_linkEvents.serialLost();
    });
}

void EquipmentMonitor::Winsock1_DataArrival(const QByteArray &bytes)
{
    receiveArrival("CorvaneUsw.Winsock1_DataArrival", bytes);
}

void EquipmentMonitor::Winsock1_Error(qint32 number, const QString &description, qint32 statusCode)
{
    reportFailures(m_services.errors, "CorvaneUsw.Winsock1_Error",
                   [&] { m_linkEvents.socketError(number, description, statusCode); });
}

void EquipmentMonitor::MSComm1_OnComm(const QByteArray &bytes)
{
    receiveArrival("CorvaneUsw.MSComm1_OnComm", bytes);
}

// ---- Simulated data ------------------------------------------------------------------

void EquipmentMonitor::RandomizeValues(CorvaneFUN26 &record)
{
    passOn("CorvaneUsw.RandomizeValues",
           [&] { m_simulator->RandomizeValues(record, m_totalWelds); });
}

double EquipmentMonitor::RandomizeDouble(double value)
{
    return m_simulator->RandomizeDouble(value);
}

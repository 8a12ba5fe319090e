// The equipment monitor's data path: from the bytes of the link through the frame
// parser to the datasets, the alarm list, the counters, the data log and sampling.

#include "EquipmentMonitor.h"

#include "DataLog.h"
#include "RuleAlarmText.h"
#include "SamplingSeam.h"
#include "WeldSimulator.h"

#include "platform/Clock.h"
#include "platform/ErrorPassing.h"
#include "platform/EventLog.h"
#include "protocol/CorvaneParser.h"
#include "protocol/CorvaneUSWSupport.h"
#include "protocol/FrameSync.h"

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
    reportFailures(m_services.errors, kProcessDataStream, [&] {
        const CorvaneParser parser(m_services.measurementSystem, m_services.clock);
        for (;;) {
            std::optional<CorvaneFUN26> function;
            try {
                function = parser.GetFunction(m_receiveBuffer);
            } catch (ProgramError &error) {
                // A corrupted frame: report it once, step past its frame start and go on
                // with what follows, so one bad frame never stops the link.
                error.addSource(QLatin1String(kProcessDataStream));
                m_services.errors.Show(QLatin1String(kProcessDataStream), error.number(),
                                       error.description(), error.source());
                FrameSync::dropBadFrameStart(m_receiveBuffer);
                FrameSync::discardUnframedLead(m_receiveBuffer);
                continue;
            }
            // No complete frame left, or a frame of another function: this arrival is done.
            if (!function)
                return;
            ResolveFunction26(function);
            ProcessRecord(*m_currentRecord);
        }
    });
}

const CorvaneFUN26 &EquipmentMonitor::ResolveFunction26(const std::optional<CorvaneFUN26> &function)
{
    return passOn("CorvaneUsw.ResolveFunction26", [&]() -> const CorvaneFUN26 & {
        if (!function)
            throw ProgramError(ProgramError::kTypeMismatch, QStringLiteral("Type mismatch"),
                               QStringLiteral("CorvaneUsw.ResolveFunction26"));
        m_currentRecord = *function;
        return *m_currentRecord;
    });
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

void EquipmentMonitor::ReportRuleViolations()
{
    const QList<RuleViolation> violations = m_sampling->takeRuleViolations();
    if (violations.isEmpty())
        return;
    // The line carries the cycle count of the last weld, as weld alarms carry theirs.
    const qint32 cycle = m_currentRecord ? m_currentRecord->CycleCount : 0;
    for (const RuleViolation &violation : violations) {
        const QString text = ruleAlarmText(violation, *m_language);
        m_alarms.AddTextItem(cycle, text);
        reportFailures(m_services.errors, "CorvaneUsw.ReportRuleViolations", [&] {
            m_services.eventLog.WriteEventLog(QStringLiteral("SPC"),
                                              QStringLiteral("RuleViolation"), violation.rule, text,
                                              violation.subgroupTime.toString(Qt::ISODateWithMs));
        });
        emit ruleViolated(violation, text);
    }
    emit alarmsChanged();
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
        ReportRuleViolations();
        m_link->tick(m_lastWeldTime, *m_language);
    });
}

void EquipmentMonitor::Winsock1_Connect()
{
    reportFailures(m_services.errors, "CorvaneUsw.Winsock1_Connect",
                   [&] { m_link->Winsock1_Connect(); });
}

void EquipmentMonitor::Winsock1_DataArrival(qint64 bytesTotal)
{
    Q_UNUSED(bytesTotal) // everything that arrived is read, however the events were counted
    reportFailures(m_services.errors, "CorvaneUsw.Winsock1_DataArrival", [&] {
        receiveBytes(m_link->readSocket());
        ProcessDataStream();
    });
}

void EquipmentMonitor::Winsock1_Error(qint32 number, const QString &description, qint32 statusCode)
{
    reportFailures(m_services.errors, "CorvaneUsw.Winsock1_Error", [&] {
        m_services.eventLog.WriteEventLog(QStringLiteral("Main"), QStringLiteral("WinSockError"),
                                          number, description,
                                          QStringLiteral("SCODE: ") + QString::number(statusCode));
    });
}

void EquipmentMonitor::MSComm1_OnComm()
{
    // The port signals a receive event; bytes waiting would suffice as well.
    reportFailures(m_services.errors, "CorvaneUsw.MSComm1_OnComm", [&] {
        const QByteArray bytes = m_link->readSerialPort();
        if (bytes.isEmpty())
            return;
        receiveBytes(bytes);
        ProcessDataStream();
    });
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

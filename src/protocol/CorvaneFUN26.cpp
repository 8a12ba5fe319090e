#include "CorvaneFUN26.h"

#include "CorvaneUSWSupport.h"
#include "RecordFormatter.h"

#include "platform/ErrorPassing.h"
#include "platform/RegionalFormat.h"
#include "platform/qlxLanguage.h"

#include <array>

namespace {

// Weld-mode bits 0 to 5. Each text ends in one blank that separates the words.
constexpr std::array<const char16_t *, 6> kWeldModeTokens = {
    u"24|Time ",       u"6008|Energy ",   u"6009|Peak Power ",
    u"6065|Collapse ", u"6066|Absolute ", u"6067|Gnd Detect ",
};

constexpr std::array<const char16_t *, 37> kHeaderTokens = {
    u"6342|Acquired Time",
    u"6343|Cycle Count",
    u"2124|Hour",
    u"3955|Minute",
    u"5442|Second",
    u"2128|Year",
    u"2125|Month",
    u"1768|Day",
    u"6007|Weld Time",
    u"6008|Energy",
    u"6344|Distance",
    u"6010|Weld Collapse",
    u"6011|Total Collapse",
    u"6345|Start Frequency",
    u"6346|End Frequency",
    u"6347|Frequency Change",
    u"6348|Frequency Minimum",
    u"6349|Frequency Maximum",
    u"6464|Velocity",
    u"6350|Trigger Distance",
    u"6462|Reject Part Alarms",
    u"6463|Suspect Part Alarms",
    u"6459|No Cycle Alarms",
    u"6461|Overload Alarms",
    u"6458|Equipment Failure Alarms",
    u"6457|Cycle Modified Alarms",
    u"6016|Preset #",
    u"6460|Note Alarms",
    u"6352|Amplitude A",
    u"6353|Amplitude B",
    u"6017|Mode",
    u"6354|PS Control Flags",
    u"6009|Peak Power",
    u"6355|Weld Pressure",
    u"6013|Weld Force",
    u"6356|Hold Force",
    u"6014|Total Cycle Time",
};

} // namespace

QString CorvaneFUN26::WeldModeDescription(const qlxLanguage &language) const
{
    QString description;
    for (size_t bit = 0; bit < kWeldModeTokens.size(); ++bit) {
        if (WeldMode & (1u << bit))
            description += language.Translate(kWeldModeTokens[bit]);
    }
    description = description.trimmed();
    return description.isEmpty() ? QStringLiteral("----") : description;
}

QString CorvaneFUN26::HeaderRecord(const qlxLanguage &language)
{
    QStringList captions;
    captions.reserve(kRecordColumns);
    for (const char16_t *token : kHeaderTokens)
        captions << language.Translate(token);
    const QString notApplicable = language.Translate(u"1196|N/A");
    captions << notApplicable << notApplicable;
    return captions.join(u'\t');
}

QString CorvaneFUN26::Record(const RegionalFormat &format) const
{
    return RecordFormatter(format).format(*this);
}

Function26Scale Function26Scale::forSystem(MeasurementSystem system)
{
    if (system == MeasurementSystem::US)
        return {1.0 / 10000.0, 10.0 / 1000.0, 100.0 / 1000.0, 100.0 / 1000.0};
    return {25.4 / 10000.0, 254.0 / 1000.0, 689.0 / 1000.0, 444.8222 / 1000.0};
}

namespace {

// Big-endian reads from a data block whose 116 bytes are known to be there.
class DataReader
{
public:
    explicit DataReader(const uchar *data)
        : m_at(data)
    {}

    quint8 byte() { return *m_at++; }
    qint16 integer()
    {
        const qint16 value = qint16(quint16((m_at[0] << 8) | m_at[1]));
        m_at += 2;
        return value;
    }
    qint32 longInt()
    {
        const qint32 value = qint32((quint32(m_at[0]) << 24) | (quint32(m_at[1]) << 16) |
                                    (quint32(m_at[2]) << 8) | quint32(m_at[3]));
        m_at += 4;
        return value;
    }

private:
    const uchar *m_at;
};

} // namespace

void decodeFunction26(const uchar *data, const Function26Scale &scale,
                      const QDateTime &acquiredTime, CorvaneFUN26 &r)
{
    DataReader in(data);
    r.AcquiredTime = acquiredTime;
    r.CycleCount = in.longInt();
    r.Hour = in.integer();
    r.Minute = in.byte();
    r.Second = in.byte();
    r.Year = in.integer();
    r.Month = in.byte();
    r.Day = in.byte();
    r.ActualWeldTime = in.longInt() * 0.001;
    r.TotalEnergy = in.longInt() * 0.1;
    r.ActualDistance = in.longInt() * scale.distance;
    r.ActualWeldCollapse = in.longInt() * scale.distance;
    r.ActualTotalCollapse = in.longInt() * scale.distance;
    r.ActualStartFrequency = in.longInt();
    r.ActualEndFrequency = in.longInt();
    r.FrequencyChange = in.longInt();
    r.FrequencyMinimum = in.longInt();
    r.FrequencyMaximum = in.longInt();
    r.ActualVelocity = in.longInt() * scale.velocity;
    r.TriggerDistance = in.longInt() * scale.distance;
    r.RejectPartAlarms = in.longInt();
    r.SuspectPartAlarms = in.longInt();
    r.NoCycleAlarms = in.longInt();
    r.OverloadAlarms = in.longInt();
    r.EquipmentFailureAlarms = in.longInt();
    r.CycleModifiedAlarms = in.longInt();
    r.PresetNumber = in.byte();
    r.Units = in.byte();
    r.PresentLimitsChanged = in.byte();
    r.ReservedByte = in.byte();
    r.NoteAlarms = in.longInt();
    r.SetAmplitudeA = in.longInt();
    r.SetAmplitudeB = in.longInt();
    r.WeldMode = in.byte();
    r.PowerSupplyControlFlags = in.byte();
    r.PeakPower = in.integer() * 0.1;
    r.WeldPresure = in.integer() * scale.pressure;
    r.WeldForceEnd = in.integer() * scale.force;
    r.HoldForceEnd = in.integer() * scale.force;
    r.TotalCycleTime = in.longInt() * 0.001;
    r.TriggerForce = in.integer() * scale.force;
}

namespace CorvaneUSWSupport {

CorvaneFUN26 CreateFunction26(QByteArrayView buffer, qsizetype pos, MeasurementSystem system,
                              const QDateTime &acquiredTime)
{
    return passOn("CorvaneUSWSupport.CreateFunction26", [&] {
        if (pos < 0 || pos > buffer.size() - CorvaneFUN26::kDataBytes)
            throw ProgramError::subscriptOutOfRange(QStringLiteral("CorvaneUSWSupport.GetByte"));
        CorvaneFUN26 r;
        decodeFunction26(reinterpret_cast<const uchar *>(buffer.data()) + pos,
                         Function26Scale::forSystem(system), acquiredTime, r);
        return r;
    });
}

} // namespace CorvaneUSWSupport

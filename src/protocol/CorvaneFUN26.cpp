#include "CorvaneFUN26.h"

#include "CorvaneUSWSupport.h"

#include "platform/ErrorPassing.h"
#include "platform/RegionalFormat.h"
#include "platform/qlxLanguage.h"

#include <array>

namespace {

// Weld-mode bits 0 to 5. Each text ends in one blank that separates the words.
constexpr std::array<const char16_t *, 6> kWeldModeTokens = {
    u"24|Time ", u"6008|Energy ", u"6009|Peak Power ", u"6065|Collapse ", u"6066|Absolute ",
    u"6067|Gnd Detect ",
};

constexpr std::array<const char16_t *, 37> kHeaderTokens = {
    u"6342|Acquired Time",       u"6343|Cycle Count",         u"2124|Hour",
    u"3955|Minute",              u"5442|Second",              u"2128|Year",
    u"2125|Month",               u"1768|Day",                 u"6007|Weld Time",
    u"6008|Energy",              u"6344|Distance",            u"6010|Weld Collapse",
    u"6011|Total Collapse",      u"6345|Start Frequency",     u"6346|End Frequency",
    u"6347|Frequency Change",    u"6348|Frequency Minimum",   u"6349|Frequency Maximum",
    u"6464|Velocity",            u"6350|Trigger Distance",    u"6462|Reject Part Alarms",
    u"6463|Suspect Part Alarms", u"6459|No Cycle Alarms",     u"6461|Overload Alarms",
    u"6458|Equipment Failure Alarms", u"6457|Cycle Modified Alarms", u"6016|Preset #",
    u"6460|Note Alarms",         u"6352|Amplitude A",         u"6353|Amplitude B",
    u"6017|Mode",                u"6354|PS Control Flags",    u"6009|Peak Power",
    u"6355|Weld Pressure",       u"6013|Weld Force",          u"6356|Hold Force",
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
    const auto integer = [](qint64 value) { return QString::number(value); };
    const auto real = [&format](double value) { return format.number(value); };
    const QStringList values = {
        format.dateTime(AcquiredTime),
        integer(CycleCount),
        integer(Hour),
        integer(Minute),
        integer(Second),
        integer(Year),
        integer(Month),
        integer(Day),
        real(ActualWeldTime),
        real(TotalEnergy),
        real(ActualDistance),
        real(ActualWeldCollapse),
        real(ActualTotalCollapse),
        integer(ActualStartFrequency),
        integer(ActualEndFrequency),
        integer(FrequencyChange),
        integer(FrequencyMinimum),
        integer(FrequencyMaximum),
        real(ActualVelocity),
        real(TriggerDistance),
        integer(RejectPartAlarms),
        integer(SuspectPartAlarms),
        integer(NoCycleAlarms),
        integer(OverloadAlarms),
        integer(EquipmentFailureAlarms),
        integer(CycleModifiedAlarms),
        integer(PresetNumber),
        integer(NoteAlarms),
        integer(SetAmplitudeA),
        integer(SetAmplitudeB),
        integer(WeldMode),
        integer(PowerSupplyControlFlags),
        real(PeakPower),
        real(WeldPresure),
        real(WeldForceEnd),
        real(HoldForceEnd),
        real(TotalCycleTime),
        QString(),
        QString(),
    };
    return values.join(u'\t');
}

Function26Scale Function26Scale::forSystem(MeasurementSystem system)
{
    if (system == MeasurementSystem::US)
        return {1.0 / 10000.0, 10.0 / 1000.0, 100.0 / 1000.0, 100.0 / 1000.0};
    return {25.4 / 10000.0, 254.0 / 1000.0, 689.0 / 1000.0, 444.8222 / 1000.0};
}

namespace CorvaneUSWSupport {

CorvaneFUN26 CreateFunction26(QByteArrayView buffer, qsizetype pos, MeasurementSystem system,
                              const QDateTime &acquiredTime)
{
    return passOn("CorvaneUSWSupport.CreateFunction26", [&] {
        const Function26Scale scale = Function26Scale::forSystem(system);
        const auto byte = [&] { return GetByte(buffer, pos); };
        const auto integer = [&] { return GetInteger(buffer, pos); };
        const auto longInt = [&] { return GetLong(buffer, pos); };

        CorvaneFUN26 r;
        r.AcquiredTime = acquiredTime;
        r.CycleCount = longInt();
        r.Hour = integer();
        r.Minute = byte();
        r.Second = byte();
        r.Year = integer();
        r.Month = byte();
        r.Day = byte();
        r.ActualWeldTime = longInt() * 0.001;
        r.TotalEnergy = longInt() * 0.1;
        r.ActualDistance = longInt() * scale.distance;
        r.ActualWeldCollapse = longInt() * scale.distance;
        r.ActualTotalCollapse = longInt() * scale.distance;
        r.ActualStartFrequency = longInt();
        r.ActualEndFrequency = longInt();
        r.FrequencyChange = longInt();
        r.FrequencyMinimum = longInt();
        r.FrequencyMaximum = longInt();
        r.ActualVelocity = longInt() * scale.velocity;
        r.TriggerDistance = longInt() * scale.distance;
        r.RejectPartAlarms = longInt();
        r.SuspectPartAlarms = longInt();
        r.NoCycleAlarms = longInt();
        r.OverloadAlarms = longInt();
        r.EquipmentFailureAlarms = longInt();
        r.CycleModifiedAlarms = longInt();
        r.PresetNumber = byte();
        r.Units = byte();
        r.PresentLimitsChanged = byte();
        r.ReservedByte = byte();
        r.NoteAlarms = longInt();
        r.SetAmplitudeA = longInt();
        r.SetAmplitudeB = longInt();
        r.WeldMode = byte();
        r.PowerSupplyControlFlags = byte();
        r.PeakPower = integer() * 0.1;
        r.WeldPresure = integer() * scale.pressure;
        r.WeldForceEnd = integer() * scale.force;
        r.HoldForceEnd = integer() * scale.force;
        r.TotalCycleTime = longInt() * 0.001;
        r.TriggerForce = integer() * scale.force;
        return r;
    });
}

} // namespace CorvaneUSWSupport

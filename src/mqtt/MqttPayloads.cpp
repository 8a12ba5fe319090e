#include "MqttPayloads.h"

#include "JsonWriter.h"

#include "monitor/AlarmNames.h"
#include "monitor/SamplingSeam.h"
#include "protocol/CorvaneFUN26.h"

namespace MqttPayloads {

namespace {

struct NamedGroup
{
    const char *name;
    AlarmGroup group;
};

constexpr NamedGroup kAlarmGroups[] = {
    {"RejectPart", AlarmGroup::RejectPart},
    {"SuspectPart", AlarmGroup::SuspectPart},
    {"NoCycle", AlarmGroup::NoCycle},
    {"Overload", AlarmGroup::Overload},
    {"EquipmentFailure", AlarmGroup::EquipmentFailure},
    {"CycleModified", AlarmGroup::CycleModified},
    {"Note", AlarmGroup::Note},
};

// Every field of the record under its own name, in display units.
void writeRecord(JsonWriter &json, const CorvaneFUN26 &r)
{
    json.beginObject("record");
    json.field("CycleCount", r.CycleCount);
    json.field("Hour", r.Hour);
    json.field("Minute", r.Minute);
    json.field("Second", r.Second);
    json.field("Year", r.Year);
    json.field("Month", r.Month);
    json.field("Day", r.Day);
    json.field("ActualWeldTime", r.ActualWeldTime);
    json.field("TotalEnergy", r.TotalEnergy);
    json.field("ActualDistance", r.ActualDistance);
    json.field("ActualWeldCollapse", r.ActualWeldCollapse);
    json.field("ActualTotalCollapse", r.ActualTotalCollapse);
    json.field("ActualStartFrequency", r.ActualStartFrequency);
    json.field("ActualEndFrequency", r.ActualEndFrequency);
    json.field("FrequencyChange", r.FrequencyChange);
    json.field("FrequencyMinimum", r.FrequencyMinimum);
    json.field("FrequencyMaximum", r.FrequencyMaximum);
    json.field("ActualVelocity", r.ActualVelocity);
    json.field("TriggerDistance", r.TriggerDistance);
    json.field("RejectPartAlarms", r.RejectPartAlarms);
    json.field("SuspectPartAlarms", r.SuspectPartAlarms);
    json.field("NoCycleAlarms", r.NoCycleAlarms);
    json.field("OverloadAlarms", r.OverloadAlarms);
    json.field("EquipmentFailureAlarms", r.EquipmentFailureAlarms);
    json.field("CycleModifiedAlarms", r.CycleModifiedAlarms);
    json.field("PresetNumber", r.PresetNumber);
    json.field("Units", r.Units);
    json.field("PresentLimitsChanged", r.PresentLimitsChanged);
    json.field("ReservedByte", r.ReservedByte);
    json.field("NoteAlarms", r.NoteAlarms);
    json.field("SetAmplitudeA", r.SetAmplitudeA);
    json.field("SetAmplitudeB", r.SetAmplitudeB);
    json.field("WeldMode", r.WeldMode);
    json.field("PowerSupplyControlFlags", r.PowerSupplyControlFlags);
    json.field("PeakPower", r.PeakPower);
    json.field("WeldPresure", r.WeldPresure);
    json.field("WeldForceEnd", r.WeldForceEnd);
    json.field("HoldForceEnd", r.HoldForceEnd);
    json.field("TotalCycleTime", r.TotalCycleTime);
    json.field("TriggerForce", r.TriggerForce);
    json.endObject();
}

} // namespace

QByteArray weld(const Source &source, const CorvaneFUN26 &record, const qlxLanguage &language)
{
    JsonWriter json;
    json.field("configuration", source.configuration);
    json.field("part", source.part);
    json.field("process", source.process);
    json.field("acquiredTime", isoTime(record.AcquiredTime));
    json.field("cycleCount", record.CycleCount);
    json.field("unitSystem", source.measurementSystem == MeasurementSystem::US
                                 ? QStringLiteral("US")
                                 : QStringLiteral("metric"));
    json.field("weldMode", record.WeldModeDescription(language));
    writeRecord(json, record);
    json.beginObject("alarms");
    for (const NamedGroup &group : kAlarmGroups)
        json.field(group.name, groupAlarmNames(record, group.group, language));
    json.endObject();
    return json.take();
}

QByteArray subgroup(const QString &configuration, const qlaDatabase6::Subgroup &subgroup,
                    bool queued)
{
    const qlaDatabase6::SubgroupHeader &header = subgroup.header();
    JsonWriter json;
    json.field("configuration", configuration);
    json.field("key", header.key);
    json.field("dateTime", isoTime(header.dateTime));
    json.field("partGroup", header.partGroup);
    json.field("part", header.part);
    json.field("processGroup", header.processGroup);
    json.field("process", header.process);
    json.field("sourceTag", header.sourceTag);
    json.field("valueCount", header.valueCount);
    json.field("queued", queued);
    json.beginArray("testItems");
    for (const qlaDatabase6::TestItem &item : subgroup.testItems()) {
        json.beginObject();
        json.field("name", item.name);
        json.field("kind", item.kind);
        json.beginArray("values");
        for (const qlaDatabase6::SubgroupValue &value : item.values) {
            json.beginObject();
            json.field("sample", value.sampleNumber);
            json.field("value", value.value);
            if (!value.text.isEmpty())
                json.field("text", value.text);
            json.endObject();
        }
        json.endArray();
        json.endObject();
    }
    json.endArray();
    return json.take();
}

QByteArray rule(const Source &source, const RuleViolation &violation, const QString &text)
{
    JsonWriter json;
    json.field("configuration", source.configuration);
    json.field("part", source.part);
    json.field("process", source.process);
    json.field("characteristic", violation.characteristic);
    json.field("chart", violation.spreadChart ? QStringLiteral("spread") : QStringLiteral("mean"));
    json.field("rule", violation.rule);
    json.field("subgroupTime", isoTime(violation.subgroupTime));
    json.field("value", violation.value);
    json.field("centre", violation.centre);
    json.field("lowerLimit", violation.lowerLimit);
    json.field("upperLimit", violation.upperLimit);
    json.field("text", text);
    return json.take();
}

QByteArray linkState(const QString &configuration, LinkState state, const QDateTime &time)
{
    JsonWriter json;
    json.field("configuration", configuration);
    json.field("state", linkStateName(state));
    json.field("time", isoTime(time));
    return json.take();
}

QString linkStateName(LinkState state)
{
    switch (state) {
    case LinkState::Stopped:
        return QStringLiteral("stopped");
    case LinkState::Connecting:
        return QStringLiteral("connecting");
    case LinkState::Connected:
        return QStringLiteral("connected");
    case LinkState::InvalidPort:
        return QStringLiteral("invalid port");
    }
    return {};
}

QString isoTime(const QDateTime &time)
{
    return time.toOffsetFromUtc(time.offsetFromUtc()).toString(Qt::ISODateWithMs);
}

} // namespace MqttPayloads

#include "MqttPayloads.h"

#include "monitor/AlarmNames.h"
#include "protocol/CorvaneFUN26.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

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
QJsonObject recordFields(const CorvaneFUN26 &r)
{
    return QJsonObject{
        {"CycleCount", r.CycleCount},
        {"Hour", r.Hour},
        {"Minute", r.Minute},
        {"Second", r.Second},
        {"Year", r.Year},
        {"Month", r.Month},
        {"Day", r.Day},
        {"ActualWeldTime", r.ActualWeldTime},
        {"TotalEnergy", r.TotalEnergy},
        {"ActualDistance", r.ActualDistance},
        {"ActualWeldCollapse", r.ActualWeldCollapse},
        {"ActualTotalCollapse", r.ActualTotalCollapse},
        {"ActualStartFrequency", r.ActualStartFrequency},
        {"ActualEndFrequency", r.ActualEndFrequency},
        {"FrequencyChange", r.FrequencyChange},
        {"FrequencyMinimum", r.FrequencyMinimum},
        {"FrequencyMaximum", r.FrequencyMaximum},
        {"ActualVelocity", r.ActualVelocity},
        {"TriggerDistance", r.TriggerDistance},
        {"RejectPartAlarms", r.RejectPartAlarms},
        {"SuspectPartAlarms", r.SuspectPartAlarms},
        {"NoCycleAlarms", r.NoCycleAlarms},
        {"OverloadAlarms", r.OverloadAlarms},
        {"EquipmentFailureAlarms", r.EquipmentFailureAlarms},
        {"CycleModifiedAlarms", r.CycleModifiedAlarms},
        {"PresetNumber", r.PresetNumber},
        {"Units", r.Units},
        {"PresentLimitsChanged", r.PresentLimitsChanged},
        {"ReservedByte", r.ReservedByte},
        {"NoteAlarms", r.NoteAlarms},
        {"SetAmplitudeA", r.SetAmplitudeA},
        {"SetAmplitudeB", r.SetAmplitudeB},
        {"WeldMode", r.WeldMode},
        {"PowerSupplyControlFlags", r.PowerSupplyControlFlags},
        {"PeakPower", r.PeakPower},
        {"WeldPresure", r.WeldPresure},
        {"WeldForceEnd", r.WeldForceEnd},
        {"HoldForceEnd", r.HoldForceEnd},
        {"TotalCycleTime", r.TotalCycleTime},
        {"TriggerForce", r.TriggerForce},
    };
}

} // namespace

QByteArray weld(const WeldContext &context, const CorvaneFUN26 &record, const qlxLanguage &language)
{
    QJsonObject alarms;
    for (const NamedGroup &group : kAlarmGroups) {
        alarms.insert(QLatin1String(group.name),
                      QJsonArray::fromStringList(groupAlarmNames(record, group.group, language)));
    }
    const QJsonObject message{
        {"configuration", context.configuration},
        {"part", context.part},
        {"process", context.process},
        {"acquiredTime", isoTime(record.AcquiredTime)},
        {"cycleCount", record.CycleCount},
        {"unitSystem", context.measurementSystem == MeasurementSystem::US ? "US" : "metric"},
        {"weldMode", record.WeldModeDescription(language)},
        {"record", recordFields(record)},
        {"alarms", alarms},
    };
    return QJsonDocument(message).toJson(QJsonDocument::Compact);
}

QByteArray linkState(const QString &configuration, LinkState state, const QDateTime &time)
{
    const QJsonObject message{
        {"configuration", configuration},
        {"state", linkStateName(state)},
        {"time", isoTime(time)},
    };
    return QJsonDocument(message).toJson(QJsonDocument::Compact);
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

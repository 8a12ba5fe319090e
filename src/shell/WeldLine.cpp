#include "WeldLine.h"

#include "monitor/AlarmNames.h"
#include "platform/RegionalFormat.h"
#include "platform/qlxLanguage.h"
#include "protocol/AlarmCodes.h"
#include "protocol/CorvaneFUN26.h"

#include <QStringList>

QStringList alarmNames(const CorvaneFUN26 &record, const qlxLanguage &language)
{
    static constexpr AlarmGroup kGroups[] = {
        AlarmGroup::RejectPart, AlarmGroup::SuspectPart,      AlarmGroup::NoCycle,
        AlarmGroup::Overload,   AlarmGroup::EquipmentFailure, AlarmGroup::CycleModified,
        AlarmGroup::Note,
    };
    QStringList names;
    for (const AlarmGroup group : kGroups)
        names += groupAlarmNames(record, group, language);
    return names;
}

QString verboseWeldLine(const QString &configurationName, const CorvaneFUN26 &record,
                        const qlxLanguage &language, const RegionalFormat &format)
{
    const QStringList alarms = alarmNames(record, language);
    return QStringLiteral("%1: cycle %2, weld time %3 s, energy %4 J, alarms: %5")
        .arg(configurationName, QString::number(record.CycleCount),
             format.number(record.ActualWeldTime), format.number(record.TotalEnergy),
             alarms.isEmpty() ? QStringLiteral("none") : alarms.join(QStringLiteral("; ")));
}

#include "AlarmNames.h"

#include "platform/qlxLanguage.h"
#include "protocol/CorvaneFUN26.h"

QStringList groupAlarmNames(const CorvaneFUN26 &record, AlarmGroup group,
                            const qlxLanguage &language)
{
    const quint32 word = quint32(alarmWord(record, group));
    if (word == 0)
        return {};
    const AlarmTable table = CorvaneUSWSupport::AlarmCodes(group);
    QStringList names;
    for (int bit = 0; bit < 32; ++bit) {
        if ((word & (1u << bit)) == 0)
            continue;
        names.append(table[size_t(bit)].isEmpty()
                         ? QStringLiteral("bit %1").arg(bit)
                         : language.Translate(table[size_t(bit)]).trimmed());
    }
    return names;
}

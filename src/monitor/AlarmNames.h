#pragma once

#include "protocol/AlarmCodes.h"

#include <QStringList>

struct CorvaneFUN26;
class qlxLanguage;

// The translated names of the alarm bits set in one group's word of a record, from bit
// 0 upward. A bit that the group's table does not name is still an alarm the engineer
// must see: it is called "bit N".
QStringList groupAlarmNames(const CorvaneFUN26 &record, AlarmGroup group,
                            const qlxLanguage &language);

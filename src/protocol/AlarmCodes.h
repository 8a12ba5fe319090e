#pragma once

#include <QString>

#include <array>

struct CorvaneFUN26;

// The names of the alarms of one alarm group, as language tokens indexed by bit number;
// an empty entry is a bit with no alarm.
using AlarmTable = std::array<QString, 32>;

// The seven alarm groups of a weld record.
enum class AlarmGroup { RejectPart, SuspectPart, NoCycle, Overload, EquipmentFailure, CycleModified, Note };

namespace CorvaneUSWSupport {

// Each builder returns a new table.
AlarmTable GetRejectPartAlarmCodes();
AlarmTable GetSuspectPartAlarmCodes();
AlarmTable GetNoCycleAlarmCodes();
AlarmTable GetOverloadAlarmCodes();
AlarmTable GetEquipmentAlarmCodes();
AlarmTable GetCycleModifiedAlarmCodes();
AlarmTable GetNoteAlarmCodes();

// Each table is built once on first use and kept; every read returns a copy.
AlarmTable RejectPartAlarmCodes();
AlarmTable SuspectPartAlarmCodes();
AlarmTable NoCycleAlarmCodes();
AlarmTable OverloadAlarmCodes();
AlarmTable EquipmentAlarmCodes();
AlarmTable CycleModifiedAlarmCodes();
AlarmTable NoteAlarmCodes();

// The kept table of a group.
AlarmTable AlarmCodes(AlarmGroup group);

// The mask of a bit: 2 to the power bit, and 0x80000000 for bit 31. A bit outside 0..31
// fails with "Value must be 0 to 31".
qint32 ConvertBitToLong(qint32 bit);

} // namespace CorvaneUSWSupport

// The alarm word of one group in a record.
qint32 alarmWord(const CorvaneFUN26 &record, AlarmGroup group);
qint32 &alarmWord(CorvaneFUN26 &record, AlarmGroup group);

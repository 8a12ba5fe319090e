#pragma once

#include <QStringView>

// Language tokens of the monitor's face. Captions of the data log's columns keep their
// numbers; the face's own number from 7000.
namespace MonitorCaptions {

inline constexpr QStringView kMode = u"6017|Mode";
inline constexpr QStringView kLastWeld = u"7000|Last weld";
inline constexpr QStringView kAlarms = u"7001|Alarms";
inline constexpr QStringView kRunTime = u"7002|Run time";
inline constexpr QStringView kWelds = u"7003|Welds";
inline constexpr QStringView kWeldsPerHour = u"7004|Welds/hour";
// Subgroups waiting in the outbox for the SPC database.
inline constexpr QStringView kSpcBacklog = u"7014|SPC backlog";
inline constexpr QStringView kPart = u"7005|&Part";
inline constexpr QStringView kSelectPart = u"7006|Choose the SPC part";
inline constexpr QStringView kSummary = u"7007|Summary";
inline constexpr QStringView kNoCharacteristic = u"7008|(none)";
inline constexpr QStringView kConnectionProblem = u"7009|The link to the power supply is not up";

} // namespace MonitorCaptions

#pragma once

#include <QStringView>

// Language tokens of the monitor's face. Captions with a number share it with the data
// log's column of the same meaning; the others show their default text until the
// language tables give them one.
namespace MonitorCaptions {

inline constexpr QStringView kMode = u"6017|Mode";
inline constexpr QStringView kLastWeld = u"Last weld";
inline constexpr QStringView kAlarms = u"Alarms";
inline constexpr QStringView kRunTime = u"Run time";
inline constexpr QStringView kWelds = u"Welds";
inline constexpr QStringView kWeldsPerHour = u"Welds/hour";
// Subgroups waiting in the outbox for the SPC database.
inline constexpr QStringView kSpcBacklog = u"SPC backlog";
inline constexpr QStringView kPart = u"&Part";
inline constexpr QStringView kSelectPart = u"Choose the SPC part";
inline constexpr QStringView kSummary = u"Summary";
inline constexpr QStringView kNoCharacteristic = u"(none)";
inline constexpr QStringView kConnectionProblem = u"The link to the power supply is not up";

} // namespace MonitorCaptions

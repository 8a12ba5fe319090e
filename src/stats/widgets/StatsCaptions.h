#pragma once

#include <QStringView>

// Language tokens of the statistics displays. The count captions carry their numbers;
// the other captions have no number of their own yet and show their default text until
// the language tables give them one.
namespace StatsCaptions {

inline constexpr QStringView kCount = u"1899|Count";
inline constexpr QStringView kLSL = u"1180|LSL";
inline constexpr QStringView kUSL = u"1178|USL";
inline constexpr QStringView kMinimum = u"Minimum";
inline constexpr QStringView kMaximum = u"Maximum";
inline constexpr QStringView kAverage = u"Average";
inline constexpr QStringView kLastValue = u"Last value";
inline constexpr QStringView kTotal = u"Total";
inline constexpr QStringView kClose = u"&Close";
inline constexpr QStringView kValues = u"Values";
inline constexpr QStringView kFolded = u"oldest kept as a histogram only";

} // namespace StatsCaptions

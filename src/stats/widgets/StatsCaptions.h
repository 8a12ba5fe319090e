#pragma once

#include <QStringView>

// Language tokens of the statistics displays. Captions that the welder maker's tables do
// not number take numbers from 7400.
namespace StatsCaptions {

inline constexpr QStringView kCount = u"1899|Count";
inline constexpr QStringView kLSL = u"1180|LSL";
inline constexpr QStringView kUSL = u"1178|USL";
inline constexpr QStringView kMinimum = u"7401|Minimum";
inline constexpr QStringView kMaximum = u"7402|Maximum";
inline constexpr QStringView kAverage = u"7403|Average";
inline constexpr QStringView kLastValue = u"7404|Last value";
inline constexpr QStringView kTotal = u"7405|Total";
inline constexpr QStringView kClose = u"7400|&Close";
inline constexpr QStringView kNoValuesYet = u"7406|no values yet";
inline constexpr QStringView kValues = u"7407|Values";
inline constexpr QStringView kFolded = u"7408|oldest kept as a histogram only";
inline constexpr QStringView kSigmaOverall = u"7409|σ overall";
inline constexpr QStringView kPp = u"7410|Pp";
inline constexpr QStringView kPpk = u"7411|Ppk";
inline constexpr QStringView kControlChart = u"7412|Control C&hart...";

} // namespace StatsCaptions

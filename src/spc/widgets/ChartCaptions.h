#pragma once

#include <QStringView>

// Language tokens of the control-chart window and the choice of its characteristic
// (numbers 7600 to 7649).
namespace ChartCaptions {

inline constexpr QStringView kControlChart = u"7600|Control Chart";
inline constexpr QStringView kSince = u"7601|From";
inline constexpr QStringView kUntil = u"7602|Until";
inline constexpr QStringView kLatest = u"7603|Up to the latest subgroup";
inline constexpr QStringView kShow = u"7604|&Show";
inline constexpr QStringView kFreeze = u"7605|&Freeze Limits of the Visible Range";
inline constexpr QStringView kExportPng = u"7606|Export &PNG...";
inline constexpr QStringView kExportSvg = u"7607|Export &SVG...";
inline constexpr QStringView kClose = u"7400|&Close";
inline constexpr QStringView kMeans = u"7608|Mean";
inline constexpr QStringView kIndividuals = u"7609|Individual value";
inline constexpr QStringView kRange = u"7610|Range";
inline constexpr QStringView kStdDev = u"7611|Standard deviation";
inline constexpr QStringView kMovingRange = u"7612|Moving range";
inline constexpr QStringView kRule = u"7613|Rule";
inline constexpr QStringView kBeyondLimits = u"7614|Beyond the control limits";
inline constexpr QStringView kNotEnoughData = u"7615|Not enough data";
inline constexpr QStringView kSigmaWithin = u"7616|σ within";
inline constexpr QStringView kSigmaOverall = u"7617|σ overall";
inline constexpr QStringView kPpm = u"7618|Out of specification (ppm)";
inline constexpr QStringView kFrozenLimits = u"7619|Limits frozen in the database";
inline constexpr QStringView kWindowLimits = u"7620|Limits estimated from the shown subgroups";
inline constexpr QStringView kSubgroups = u"7621|Subgroups";
inline constexpr QStringView kFreezeQuestion =
    u"7622|Freeze the control limits estimated from the subgroups from %1 to %2?";
inline constexpr QStringView kExportFailed = u"7623|The chart could not be written to %1.";
inline constexpr QStringView kPart = u"7624|Part";
inline constexpr QStringView kProcess = u"7625|Process";
inline constexpr QStringView kTest = u"7626|Test";
inline constexpr QStringView kOpen = u"7627|&Open";
inline constexpr QStringView kCancel = u"7628|&Cancel";
inline constexpr QStringView kNoDatabase = u"7629|The SPC database cannot be opened: %1";
inline constexpr QStringView kCp = u"7631|Cp";
inline constexpr QStringView kCpk = u"7632|Cpk";
inline constexpr QStringView kPp = u"7633|Pp";
inline constexpr QStringView kPpk = u"7634|Ppk";

} // namespace ChartCaptions

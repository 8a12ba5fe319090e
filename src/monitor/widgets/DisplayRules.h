#pragma once

#include <QDateTime>
#include <QString>
#include <QStringView>

#include <optional>

class Dataset;
class EquipmentMonitor;

// What the monitor's face shows, worked out from the engine without any widget: the
// scale, bar colour and marker colours of a result row, and the six texts of the status
// block. The view only hands these to its controls.
namespace DisplayRules {

// Shown in a last-value box and in the status block where there is nothing to show yet.
inline constexpr QStringView kNoValue = u"----";

// The two ends of a row's meter: the lower specification limit when the dataset has one
// (flag 32), else the smallest value so far; the upper specification limit when it has
// one (flag 2), else the largest value. A single limit that lies beyond every value on
// the other side (only a lower limit of 100 while all values are below 50) would cross
// the ends, which the meter refuses; the ends are then taken the other way round, so the
// row keeps showing its values, all of them out of specification.
struct MeterScale
{
    double lower = 0;
    double upper = 0;
};
MeterScale meterScale(const Dataset &dataset);

// The bar colour of a row in blue-green-red order: red when the last value is out of
// specification, yellow when it passes a warning limit, green when it is within every
// limit the characteristic has. No value for a characteristic without limits, whose bar
// takes the button-face colour.
std::optional<quint32> barColor(const Dataset &dataset);

// The colour of a marker for value: red (255) beyond a specification limit that the
// characteristic has, black (0) otherwise. A value on the limit is inside; warning limits
// do not colour markers.
quint32 SetMarkerColor(const Dataset &dataset, double value);

// Welds per hour over elapsedSeconds, truncated toward zero; none at elapsed 0, where the
// rate is not known yet.
std::optional<qint64> weldsPerHour(qint32 welds, qint64 elapsedSeconds);

// The last weld: its cycle count, two blanks and the time it was processed.
QString lastWeldText(qint32 cycleCount, const QDateTime &time);

struct StatusTexts
{
    QString mode;
    QString lastWeld;
    QString alarms;
    QString runTime;
    QString welds;
    // None: the label keeps what it shows (the first weld of a run, at elapsed 0).
    std::optional<QString> weldsPerHour;
};
// The status block of a monitor: "----" everywhere before the first weld.
StatusTexts statusTexts(const EquipmentMonitor &monitor);

} // namespace DisplayRules

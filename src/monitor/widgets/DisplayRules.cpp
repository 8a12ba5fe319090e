#include "DisplayRules.h"

#include "monitor/EquipmentMonitor.h"
#include "stats/Dataset.h"
#include "stats/widgets/BgrColor.h"

#include <cmath>
#include <utility>

namespace DisplayRules {

MeterScale meterScale(const Dataset &dataset)
{
    MeterScale scale;
    scale.lower = (dataset.LimitFlags & Dataset::kLowerSpecLimit) ? dataset.LowerSpecLimit
                                                                  : dataset.Minimum();
    scale.upper = (dataset.LimitFlags & Dataset::kUpperSpecLimit) ? dataset.UpperSpecLimit
                                                                  : dataset.Maximum();
    if (scale.lower > scale.upper)
        std::swap(scale.lower, scale.upper);
    return scale;
}

std::optional<quint32> barColor(const Dataset &dataset)
{
    if (!dataset.HasLimits())
        return std::nullopt;
    if (dataset.ExceedsSpecifications())
        return BgrColor::kRed;
    if (dataset.ExceedsWarnings())
        return BgrColor::kYellow;
    return BgrColor::kGreen;
}

quint32 SetMarkerColor(const Dataset &dataset, double value)
{
    const bool aboveUpper =
        (dataset.LimitFlags & Dataset::kUpperSpecLimit) && value > dataset.UpperSpecLimit;
    const bool belowLower =
        (dataset.LimitFlags & Dataset::kLowerSpecLimit) && value < dataset.LowerSpecLimit;
    return aboveUpper || belowLower ? BgrColor::kRed : BgrColor::kBlack;
}

std::optional<qint64> weldsPerHour(qint32 welds, qint64 elapsedSeconds)
{
    if (elapsedSeconds == 0)
        return std::nullopt;
    return qint64(std::trunc(double(welds) / (double(elapsedSeconds) / 3600.0)));
}

QString lastWeldText(qint32 cycleCount, const QDateTime &time)
{
    return QString::number(cycleCount) + QStringLiteral("  ") +
           time.toString(QStringLiteral("HH:mm:ss"));
}

StatusTexts statusTexts(const EquipmentMonitor &monitor)
{
    StatusTexts texts;
    const auto &record = monitor.currentRecord();
    if (!record) {
        const QString none = kNoValue.toString();
        texts = {none, none, none, none, none, none};
        return texts;
    }
    const qint64 elapsed = monitor.elapsedSeconds();
    const DatasetCollection &datasets = monitor.datasets();
    const qint32 welds = datasets.isEmpty() ? 0 : datasets.at(0).Count();
    texts.mode = record->WeldModeDescription(monitor.language());
    texts.lastWeld = lastWeldText(record->CycleCount, monitor.lastWeldTime());
    texts.alarms = QString::number(monitor.totalAlarms());
    texts.runTime = EquipmentMonitor::GetRunTimeText(elapsed);
    texts.welds = QString::number(welds);
    if (const auto rate = weldsPerHour(welds, elapsed))
        texts.weldsPerHour = QString::number(*rate);
    return texts;
}

} // namespace DisplayRules

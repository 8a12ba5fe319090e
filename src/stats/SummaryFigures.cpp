#include "SummaryFigures.h"

#include "Dataset.h"
#include "platform/ProgramError.h"

#include <algorithm>
#include <limits>

namespace {

template <typename Outside>
qint32 countOutside(std::span<const double> values, std::span<const ValueCount> folded,
                    Outside outside, const char *procedure)
{
    qint64 count = 0;
    for (const double value : values) {
        if (outside(value))
            ++count;
    }
    for (const ValueCount &entry : folded) {
        if (outside(entry.value))
            count += entry.count;
    }
    if (count > std::numeric_limits<qint32>::max())
        throw ProgramError::overflow(QLatin1String(procedure));
    return qint32(count);
}

} // namespace

SummaryFigures SummaryFigures::fromDataset(const Dataset &dataset)
{
    SummaryFigures figures;
    figures.Title = dataset.Name;
    figures.Minimum = dataset.Minimum();
    figures.Maximum = dataset.Maximum();
    figures.Average = dataset.Average();
    figures.NumberFormat = dataset.NumberFormat();
    figures.Unit = dataset.Unit;
    figures.Values = dataset.GetDataset();
    const std::span<const ValueCount> folded = dataset.folded().entries();
    figures.Folded = QVector<ValueCount>(folded.begin(), folded.end());
    figures.FoldedCount = dataset.folded().count();

    const bool hasLower = dataset.LimitFlags & Dataset::kLowerSpecLimit;
    const bool hasUpper = dataset.LimitFlags & Dataset::kUpperSpecLimit;
    figures.HasLSL = hasLower;
    figures.HasUSL = hasUpper;
    if (hasLower && hasUpper) {
        figures.LSL = dataset.LowerSpecLimit;
        figures.USL = dataset.UpperSpecLimit;
    } else if (hasLower) {
        figures.LSL = dataset.LowerSpecLimit;
        figures.USL = std::max(figures.Maximum, figures.LSL);
    } else if (hasUpper) {
        figures.USL = dataset.UpperSpecLimit;
        figures.LSL = std::min(figures.Minimum, figures.USL);
    } else {
        figures.LSL = figures.Minimum;
        figures.USL = figures.Maximum;
    }
    figures.WarningLower = (dataset.LimitFlags & Dataset::kLowerWarningLimit)
                               ? dataset.LowerWarningLimit
                               : figures.LSL;
    figures.WarningUpper = (dataset.LimitFlags & Dataset::kUpperWarningLimit)
                               ? dataset.UpperWarningLimit
                               : figures.USL;
    return figures;
}

qint32 countBelow(std::span<const double> values, double limit, std::span<const ValueCount> folded)
{
    return countOutside(
        values, folded, [limit](double value) { return value < limit; }, "countBelow");
}

qint32 countAbove(std::span<const double> values, double limit, std::span<const ValueCount> folded)
{
    return countOutside(
        values, folded, [limit](double value) { return value > limit; }, "countAbove");
}

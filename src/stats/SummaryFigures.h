#pragma once

#include "ValueTally.h"

#include <QString>
#include <QVector>

#include <span>

class Dataset;

// What the summary of one characteristic shows: its name, the limits it is counted and
// drawn against, its figures and all its values: those kept one by one, and the tally of
// the oldest ones folded in a long run.
struct SummaryFigures
{
    QString Title;
    double USL = 0;
    double LSL = 0;
    // Whether the characteristic has the limit; one it lacks stands at the end of the
    // values in USL or LSL.
    bool HasUSL = false;
    bool HasLSL = false;
    double WarningUpper = 0;
    double WarningLower = 0;
    double Minimum = 0;
    double Maximum = 0;
    double Average = 0;
    QString NumberFormat;
    // The characteristic's unit, shown beside minimum, average and maximum.
    QString Unit;
    QVector<double> Values;
    QVector<ValueCount> Folded;
    qint64 FoldedCount = 0;

    // How many values the summary covers, one by one and folded.
    qint64 valueCount() const { return Values.size() + FoldedCount; }

    // Takes the figures of a Dataset. A limit that the Dataset does not define is replaced
    // by the end of its values on that side (never crossing the other limit), so nothing is
    // counted beyond it and the histogram spans the values; a missing warning limit is the
    // specification limit on that side.
    static SummaryFigures fromDataset(const Dataset &dataset);
};

// Values strictly below or above a limit, walking the whole array: a value equal to the
// limit is inside, folded values with their tally. A count beyond the signed 32-bit range
// is an overflow.
qint32 countBelow(std::span<const double> values, double limit,
                  std::span<const ValueCount> folded = {});
qint32 countAbove(std::span<const double> values, double limit,
                  std::span<const ValueCount> folded = {});

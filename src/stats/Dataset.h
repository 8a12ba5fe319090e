#pragma once

#include "CompactValues.h"
#include "ValueTally.h"

#include <QString>
#include <QVector>

class ErrorReport;

// The running statistics of one weld characteristic in one monitor: the values since the
// last ClearData (the histogram and the summary need them all), the running count,
// average, minimum and maximum, and the specification limits and warning limits the SPC
// database gives it. Values are kept compactly as the whole steps the power supply sent;
// beyond the value bound the oldest are folded into a tally of how often each value
// occurred, which still serves the summary's counts and bins, so a monitor that runs for
// months holds a bounded amount of memory.
class Dataset
{
public:
    // Bits of LimitFlags; the others are carried untouched.
    static constexpr int kUpperSpecLimit = 2;
    static constexpr int kUpperWarningLimit = 4;
    static constexpr int kLowerWarningLimit = 16;
    static constexpr int kLowerSpecLimit = 32;

    // A month (31 days) of welds at one a second.
    static constexpr qint64 kDefaultValueBound = 31LL * 24 * 3600;

    explicit Dataset(ErrorReport &errors);

    qint32 ID = 0;
    QString Name;
    QString Unit;
    bool SampleEnabled = false;
    int LimitFlags = 0;
    double UpperSpecLimit = 0;
    double LowerSpecLimit = 0;
    double UpperWarningLimit = 0;
    double LowerWarningLimit = 0;
    QString Decimals = QStringLiteral("4");

    void ClearData();
    void AddValue(double value);

    qint32 Count() const;
    double LastValue() const { return m_lastValue; }
    double Average() const;
    double Minimum() const { return Count() == 0 ? 0.0 : m_minimum; }
    double Maximum() const { return Count() == 0 ? 0.0 : m_maximum; }

    QString NumberFormat() const;
    bool HasLimits() const;
    bool HasSL() const;
    bool ExceedsSpecifications() const;
    bool ExceedsWarnings() const;

    // The value at 1-based position index; 0 outside 1 .. Count and for a position whose
    // value has been folded into the tally.
    double GetValue(qint32 index) const;
    // A copy of the values kept one by one (all of them until the bound is reached), the
    // oldest at element 0.
    QVector<double> GetDataset() const;

    // The whole step in which the power supply reports this characteristic (0.001 for a
    // weld time in seconds): values are kept as whole numbers of it. 0 keeps values as they
    // come. The values already held are re-encoded.
    void setValueStep(double step);
    double valueStep() const { return m_values.step(); }

    // How many values are kept one by one before the oldest are folded into the tally.
    void setValueBound(qint64 bound);
    qint64 valueBound() const { return m_valueBound; }
    // How many of Count have been folded into the tally, and the tally itself.
    qint32 FoldedCount() const { return qint32(m_folded.count()); }
    const ValueTally &folded() const { return m_folded; }

    // Calls visit(value, count) for the folded tally's entries, then for every value kept
    // one by one (count 1), oldest first: the whole run, for counts and bins.
    template <typename Visit> void forEachValue(Visit visit) const
    {
        for (const ValueCount &entry : m_folded.entries())
            visit(entry.value, entry.count);
        m_values.forEach([&visit](double value) { visit(value, qint64(1)); });
    }

    // Bytes held for the values and the tally.
    qsizetype storedValueBytes() const { return m_values.storedBytes() + m_folded.storedBytes(); }

private:
    void foldOldest();

    ErrorReport &m_errors;
    CompactValues m_values;
    ValueTally m_folded;
    qint64 m_valueBound = kDefaultValueBound;
    double m_lastValue = 0;
    double m_sum = 0;
    double m_minimum = 0;
    double m_maximum = 0;
};

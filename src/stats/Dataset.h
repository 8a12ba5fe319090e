#pragma once

#include <QString>
#include <QVector>

#include <vector>

class ErrorReport;

// The running statistics of one weld characteristic in one monitor: every value since
// the last ClearData (the histogram and the summary need them all, so they are kept as
// plain contiguous doubles), the running count, average, minimum and maximum, and the
// specification and warning limits that the SPC database gives it.
class Dataset
{
public:
    // Bits of LimitFlags; the others are carried untouched.
    static constexpr int kUpperSpecLimit = 2;
    static constexpr int kUpperWarningLimit = 4;
    static constexpr int kLowerWarningLimit = 16;
    static constexpr int kLowerSpecLimit = 32;

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
    double Minimum() const { return m_values.empty() ? 0.0 : m_minimum; }
    double Maximum() const { return m_values.empty() ? 0.0 : m_maximum; }

    QString NumberFormat() const;
    bool HasLimits() const;
    bool HasSL() const;
    bool ExceedsSpecifications() const;
    bool ExceedsWarnings() const;

    // The value at 1-based position index; 0 outside 1 .. Count.
    double GetValue(qint32 index) const;
    // A copy of all values, position 1 at element 0.
    QVector<double> GetDataset() const;

    // Bytes held for the value list.
    qsizetype storedValueBytes() const { return qsizetype(m_values.capacity() * sizeof(double)); }

private:
    ErrorReport &m_errors;
    std::vector<double> m_values;
    double m_lastValue = 0;
    double m_sum = 0;
    double m_minimum = 0;
    double m_maximum = 0;
};

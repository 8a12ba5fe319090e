#include "Dataset.h"

#include "platform/ErrorPassing.h"

#include <limits>

Dataset::Dataset(ErrorReport &errors)
    : m_errors(errors)
{
}

void Dataset::ClearData()
{
    std::vector<double>().swap(m_values);
    m_sum = 0;
    m_minimum = 0;
    m_maximum = 0;
}

void Dataset::AddValue(double value)
{
    reportFailures(m_errors, "Dataset.AddValue", [&] {
        if (m_values.size() >= size_t(std::numeric_limits<qint32>::max()))
            throw ProgramError::overflow(QStringLiteral("Dataset.AddValue"));
        m_lastValue = value;
        m_values.push_back(value);
        if (m_values.size() == 1) {
            m_minimum = value;
            m_maximum = value;
        } else {
            m_minimum = qMin(m_minimum, value);
            m_maximum = qMax(m_maximum, value);
        }
        m_sum += value;
    });
}

qint32 Dataset::Count() const
{
    return qint32(m_values.size());
}

double Dataset::Average() const
{
    return m_values.empty() ? 0.0 : m_sum / double(m_values.size());
}

QString Dataset::NumberFormat() const
{
    bool isNumber = false;
    const double places = Decimals.trimmed().toDouble(&isNumber);
    if (!isNumber || !(places >= 1))
        return QString();
    // Decimal places beyond what a double carries mean nothing.
    const int count = qMin(qRound(places), 17);
    return QStringLiteral("0.") + QString(count, u'0');
}

bool Dataset::HasLimits() const
{
    return (LimitFlags & (kUpperSpecLimit | kUpperWarningLimit | kLowerWarningLimit
                          | kLowerSpecLimit)) != 0;
}

bool Dataset::HasSL() const
{
    return (LimitFlags & (kUpperSpecLimit | kLowerSpecLimit)) != 0;
}

bool Dataset::ExceedsSpecifications() const
{
    bool exceeds = false;
    if ((LimitFlags & kUpperSpecLimit) && m_lastValue > UpperSpecLimit)
        exceeds = true;
    if ((LimitFlags & kLowerSpecLimit) && m_lastValue < LowerSpecLimit)
        exceeds = true;
    return exceeds;
}

bool Dataset::ExceedsWarnings() const
{
    bool exceeds = false;
    if ((LimitFlags & kUpperWarningLimit) && m_lastValue > UpperWarningLimit)
        exceeds = true;
    if ((LimitFlags & kLowerWarningLimit) && m_lastValue < LowerWarningLimit)
        exceeds = true;
    return exceeds;
}

double Dataset::GetValue(qint32 index) const
{
    if (index < 1 || index > Count())
        return 0.0;
    return m_values[size_t(index - 1)];
}

QVector<double> Dataset::GetDataset() const
{
    QVector<double> copy;
    reportFailures(m_errors, "Dataset.GetDataset",
                   [&] { copy = QVector<double>(m_values.begin(), m_values.end()); });
    return copy;
}

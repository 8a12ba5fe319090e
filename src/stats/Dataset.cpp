#include "Dataset.h"

#include "platform/ErrorPassing.h"

#include <limits>

Dataset::Dataset(ErrorReport &errors)
    : m_errors(errors)
{}

void Dataset::ClearData()
{
    m_values.clear();
    m_folded.clear();
    m_sum = 0;
    m_minimum = 0;
    m_maximum = 0;
}

void Dataset::AddValue(double value)
{
    reportFailures(m_errors, "Dataset.AddValue", [&] {
        if (Count() == std::numeric_limits<qint32>::max())
            throw ProgramError::overflow(QStringLiteral("Dataset.AddValue"));
        m_lastValue = value;
        m_values.append(value);
        if (Count() == 1) {
            m_minimum = value;
            m_maximum = value;
        } else {
            m_minimum = qMin(m_minimum, value);
            m_maximum = qMax(m_maximum, value);
        }
        m_sum += value;
        foldOldest();
    });
}

qint32 Dataset::Count() const
{
    return qint32(m_values.size() + m_folded.count());
}

double Dataset::Average() const
{
    const qint32 count = Count();
    return count == 0 ? 0.0 : m_sum / double(count);
}

void Dataset::setValueStep(double step)
{
    CompactValues recoded(step);
    m_values.forEach([&recoded](double value) { recoded.append(value); });
    m_values = std::move(recoded);
}

void Dataset::setValueBound(qint64 bound)
{
    m_valueBound = qMax<qint64>(bound, 0);
    foldOldest();
}

void Dataset::foldOldest()
{
    // Whole blocks are folded, so the store stays packed; the values kept one by one are
    // therefore between the bound and one block more.
    std::vector<double> oldest;
    while (m_values.sealedValues() > 0 &&
           m_values.size() - CompactValues::kBlockValues >= m_valueBound) {
        oldest.clear();
        oldest.reserve(CompactValues::kBlockValues);
        m_values.takeOldestBlock([&oldest](double value) { oldest.push_back(value); });
        m_folded.add(oldest);
    }
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
    return (LimitFlags &
            (kUpperSpecLimit | kUpperWarningLimit | kLowerWarningLimit | kLowerSpecLimit)) != 0;
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
    const qint64 kept = qint64(index) - 1 - m_folded.count();
    if (index > Count() || kept < 0)
        return 0.0;
    return m_values.at(kept);
}

QVector<double> Dataset::GetDataset() const
{
    QVector<double> copy;
    reportFailures(m_errors, "Dataset.GetDataset", [&] {
        copy.reserve(qsizetype(m_values.size()));
        m_values.forEach([&copy](double value) { copy.push_back(value); });
    });
    return copy;
}

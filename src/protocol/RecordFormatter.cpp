#include "RecordFormatter.h"

#include "platform/RegionalFormat.h"

#include <charconv>

RecordFormatter::RecordFormatter(const RegionalFormat &format)
    : m_format(format)
{
    m_line.reserve(512);
}

const QString &RecordFormatter::format(const CorvaneFUN26 &r)
{
    m_line.resize(0);
    appendDateTime(r.AcquiredTime);
    for (const qint64 value : {qint64(r.CycleCount), qint64(r.Hour), qint64(r.Minute),
                               qint64(r.Second), qint64(r.Year), qint64(r.Month), qint64(r.Day)})
        appendInteger(value);
    for (const double value : {r.ActualWeldTime, r.TotalEnergy, r.ActualDistance,
                               r.ActualWeldCollapse, r.ActualTotalCollapse})
        appendReal(value);
    for (const qint32 value : {r.ActualStartFrequency, r.ActualEndFrequency, r.FrequencyChange,
                               r.FrequencyMinimum, r.FrequencyMaximum})
        appendInteger(value);
    appendReal(r.ActualVelocity);
    appendReal(r.TriggerDistance);
    for (const qint64 value :
         {qint64(r.RejectPartAlarms), qint64(r.SuspectPartAlarms), qint64(r.NoCycleAlarms),
          qint64(r.OverloadAlarms), qint64(r.EquipmentFailureAlarms), qint64(r.CycleModifiedAlarms),
          qint64(r.PresetNumber), qint64(r.NoteAlarms), qint64(r.SetAmplitudeA),
          qint64(r.SetAmplitudeB), qint64(r.WeldMode), qint64(r.PowerSupplyControlFlags)})
        appendInteger(value);
    for (const double value :
         {r.PeakPower, r.WeldPresure, r.WeldForceEnd, r.HoldForceEnd, r.TotalCycleTime})
        appendReal(value);
    // Two empty columns close the line.
    m_line += QLatin1StringView("\t\t");
    return m_line;
}

void RecordFormatter::appendDateTime(const QDateTime &time)
{
    // The text shows whole seconds, so it changes at most once a second.
    const qint64 ms = time.isValid() ? time.toMSecsSinceEpoch() : 0;
    const std::optional<qint64> second =
        time.isValid() ? std::optional<qint64>((ms - (ms < 0 ? 999 : 0)) / 1000) : std::nullopt;
    if (!m_timeKnown || second != m_timeSecond) {
        m_timeText = m_format.dateTime(time);
        m_timeSecond = second;
        m_timeKnown = true;
    }
    m_line += m_timeText;
}

void RecordFormatter::appendInteger(qint64 value)
{
    char digits[24];
    const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, value);
    m_line += u'\t';
    m_line += QLatin1StringView(digits, end.ptr);
}

void RecordFormatter::appendReal(double value)
{
    m_line += u'\t';
    m_format.appendNumber(m_line, value);
}

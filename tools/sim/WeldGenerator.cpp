#include "WeldGenerator.h"

#include <QDateTime>

#include <cmath>

namespace {

constexpr double kMillimetresPerInch = 25.4;
constexpr double kNewtonsPerPound = 4.448222;

} // namespace

WeldGenerator::WeldGenerator(MeasurementSystem system, quint32 seed)
    : m_system(system)
    , m_random(seed)
{
}

double WeldGenerator::around(double mean)
{
    // Box-Muller: a normal scatter around the mean.
    const double u1 = qMax(m_random.generateDouble(), 1e-12);
    const double u2 = m_random.generateDouble();
    const double z = std::sqrt(-2.0 * std::log(u1)) * std::cos(2.0 * M_PI * u2);
    return mean * (1.0 + m_means.scatter * z);
}

qint32 WeldGenerator::maybeAlarm()
{
    if (m_random.generateDouble() >= m_alarmProbability)
        return 0;
    return qint32(quint32(1) << (1 + m_random.bounded(14)));
}

CorvaneFUN26 WeldGenerator::next()
{
    const bool us = m_system == MeasurementSystem::US;
    const double distanceUnit = us ? 1.0 / kMillimetresPerInch : 1.0;
    const double forceUnit = us ? 1.0 / kNewtonsPerPound : 1.0;
    const QDateTime now = QDateTime::currentDateTime();

    CorvaneFUN26 r;
    r.CycleCount = ++m_cycle;
    r.Hour = qint16(now.time().hour());
    r.Minute = quint8(now.time().minute());
    r.Second = quint8(now.time().second());
    r.Year = qint16(now.date().year());
    r.Month = quint8(now.date().month());
    r.Day = quint8(now.date().day());
    r.ActualWeldTime = around(m_means.weldTime);
    r.TotalEnergy = around(m_means.energy);
    r.ActualDistance = around(m_means.distance) * distanceUnit;
    r.ActualWeldCollapse = around(m_means.collapse) * distanceUnit;
    r.ActualTotalCollapse = r.ActualWeldCollapse * 1.08;
    r.ActualStartFrequency = qint32(std::lround(around(19950.0)));
    r.ActualEndFrequency = r.ActualStartFrequency + qint32(m_random.bounded(-40, 40));
    r.FrequencyChange = r.ActualEndFrequency - r.ActualStartFrequency;
    r.FrequencyMinimum = qMin(r.ActualStartFrequency, r.ActualEndFrequency) - 5;
    r.FrequencyMaximum = qMax(r.ActualStartFrequency, r.ActualEndFrequency) + 5;
    r.ActualVelocity = around(m_means.velocity) * distanceUnit;
    r.TriggerDistance = around(m_means.distance * 0.9) * distanceUnit;
    r.RejectPartAlarms = maybeAlarm();
    r.SuspectPartAlarms = maybeAlarm();
    r.NoCycleAlarms = 0;
    r.OverloadAlarms = maybeAlarm() & 0x1FE;
    r.EquipmentFailureAlarms = 0;
    r.CycleModifiedAlarms = maybeAlarm();
    r.PresetNumber = 1;
    r.Units = us ? 1 : 0;
    r.NoteAlarms = maybeAlarm() & 0x7FE;
    r.SetAmplitudeA = 80;
    r.SetAmplitudeB = 60;
    r.WeldMode = m_weldMode;
    r.PowerSupplyControlFlags = 0;
    r.PeakPower = around(m_means.peakPower);
    r.WeldPresure = around(m_means.pressure) * (us ? 1.0 / 6.89 : 1.0);
    r.WeldForceEnd = around(m_means.weldForce) * forceUnit;
    r.HoldForceEnd = r.WeldForceEnd * 1.1;
    r.TotalCycleTime = r.ActualWeldTime + 0.6;
    r.TriggerForce = around(m_means.weldForce * 0.25) * forceUnit;
    return r;
}

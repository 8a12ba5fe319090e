#pragma once

#include "protocol/CorvaneFUN26.h"

#include <QRandomGenerator>

// Plays the weld cycles of a power supply: plausible values scattered around settable
// means, in display units of the chosen unit system, with a cycle counter, the power
// supply's clock, weld-mode bits and now and then an alarm.
class WeldGenerator
{
public:
    struct Means
    {
        double weldTime = 0.250;    // s
        double energy = 120.0;      // J
        double distance = 12.0;     // mm (converted for inch units)
        double collapse = 0.40;     // mm
        double velocity = 50.0;     // mm (raw scaled, as the record carries it)
        double peakPower = 45.0;    // %
        double weldForce = 800.0;   // N
        double pressure = 310.0;    // kPa-like raw scaled value
        double scatter = 0.03;      // relative standard deviation
    };

    WeldGenerator(MeasurementSystem system, quint32 seed);

    void setMeans(const Means &means) { m_means = means; }
    void setWeldMode(quint8 bits) { m_weldMode = bits; }
    void setAlarmProbability(double probability) { m_alarmProbability = probability; }

    CorvaneFUN26 next();

private:
    double around(double mean);
    qint32 maybeAlarm();

    MeasurementSystem m_system;
    QRandomGenerator m_random;
    Means m_means;
    quint8 m_weldMode = 0x01;
    double m_alarmProbability = 0.02;
    qint32 m_cycle = 0;
};

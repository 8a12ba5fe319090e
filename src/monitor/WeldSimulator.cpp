#include "WeldSimulator.h"

#include "platform/ProgramError.h"
#include "protocol/AlarmCodes.h"
#include "protocol/CorvaneFUN26.h"

#include <cmath>
#include <limits>

WeldSimulator::WeldSimulator(std::optional<std::uint32_t> seed)
{
    if (seed)
        m_random.seed(*seed);
}

double WeldSimulator::nextUniform()
{
    // 32 random bits scaled into [0, 1): the same numbers on every standard library.
    return double(m_random()) / 4294967296.0;
}

double WeldSimulator::RandomizeDouble(double value)
{
    return value * 0.2 * nextUniform() + value - value * 0.1;
}

qint32 WeldSimulator::randomizeInteger(qint32 value)
{
    const double randomized = std::round(RandomizeDouble(value));
    if (randomized > std::numeric_limits<qint32>::max() ||
        randomized < std::numeric_limits<qint32>::min())
        throw ProgramError::overflow(QStringLiteral("CorvaneUsw.RandomizeValues"));
    return qint32(randomized);
}

void WeldSimulator::RandomizeValues(CorvaneFUN26 &record, qint32 totalWelds)
{
    static constexpr AlarmGroup kGroups[] = {
        AlarmGroup::CycleModified, AlarmGroup::EquipmentFailure, AlarmGroup::NoCycle,
        AlarmGroup::Note,          AlarmGroup::Overload,         AlarmGroup::RejectPart,
        AlarmGroup::SuspectPart};
    for (const AlarmGroup group : kGroups) {
        // Bit numbers 32 to 200 set nothing, so most welds carry no alarm in a group.
        const qint32 bit = qint32(std::lround(nextUniform() * 200));
        alarmWord(record, group) = bit < 32 ? CorvaneUSWSupport::ConvertBitToLong(bit) : 0;
    }

    record.CycleCount = totalWelds;

    record.ActualWeldTime = RandomizeDouble(record.ActualWeldTime);
    record.TotalEnergy = RandomizeDouble(record.TotalEnergy);
    record.ActualDistance = RandomizeDouble(record.ActualDistance);
    record.ActualWeldCollapse = RandomizeDouble(record.ActualWeldCollapse);
    record.ActualTotalCollapse = RandomizeDouble(record.ActualTotalCollapse);
    record.ActualStartFrequency = randomizeInteger(record.ActualStartFrequency);
    record.ActualEndFrequency = randomizeInteger(record.ActualEndFrequency);
    record.FrequencyChange = randomizeInteger(record.FrequencyChange);
    record.FrequencyMinimum = randomizeInteger(record.FrequencyMinimum);
    record.FrequencyMaximum = randomizeInteger(record.FrequencyMaximum);
    record.ActualVelocity = RandomizeDouble(record.ActualVelocity);
    record.TriggerDistance = RandomizeDouble(record.TriggerDistance);
    record.SetAmplitudeA = randomizeInteger(record.SetAmplitudeA);
    record.SetAmplitudeB = randomizeInteger(record.SetAmplitudeB);
    record.PeakPower = RandomizeDouble(record.PeakPower);
    record.WeldPresure = RandomizeDouble(record.WeldPresure);
    record.WeldForceEnd = RandomizeDouble(record.WeldForceEnd);
    record.HoldForceEnd = RandomizeDouble(record.HoldForceEnd);
    record.TriggerForce = RandomizeDouble(record.TriggerForce);
}

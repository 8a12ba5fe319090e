#include "SampleWelds.h"

#include "platform/RegionalFormat.h"
#include "protocol/Function26Frame.h"

#include <QTest>

namespace SampleWelds {

CorvaneFUN26 record(qint32 cycle, MeasurementSystem system)
{
    const Function26Scale scale = Function26Scale::forSystem(system);
    CorvaneFUN26 r;
    r.CycleCount = cycle;
    r.Hour = 22;
    r.Minute = 5;
    r.Second = quint8(cycle % 60);
    r.Year = 2026;
    r.Month = 11;
    r.Day = 14;
    r.ActualWeldTime = (250 + cycle % 7) * 0.001;
    r.TotalEnergy = (1200 + cycle % 11) * 0.1;
    r.ActualDistance = (12345 + cycle) * scale.distance;
    r.ActualWeldCollapse = 400 * scale.distance;
    r.ActualTotalCollapse = 430 * scale.distance;
    r.ActualStartFrequency = 19950;
    r.ActualEndFrequency = 19910;
    r.FrequencyChange = -40;
    r.FrequencyMinimum = 19900;
    r.FrequencyMaximum = 19960;
    r.ActualVelocity = 5000 * scale.velocity;
    r.TriggerDistance = 11000 * scale.distance;
    r.RejectPartAlarms = cycle % 5 == 0 ? 1 << 18 : 0;
    r.SuspectPartAlarms = 0;
    r.NoCycleAlarms = 0;
    r.OverloadAlarms = 0;
    r.EquipmentFailureAlarms = 0;
    r.CycleModifiedAlarms = cycle % 3 == 0 ? (1 << 4) | (1 << 6) : 0;
    r.PresetNumber = 3;
    r.Units = system == MeasurementSystem::US ? 1 : 0;
    r.PresentLimitsChanged = 0;
    r.ReservedByte = 0;
    r.NoteAlarms = 0;
    r.SetAmplitudeA = 80;
    r.SetAmplitudeB = 60;
    r.WeldMode = 0x03;
    r.PowerSupplyControlFlags = 0x21;
    r.PeakPower = 455 * 0.1;
    r.WeldPresure = -310 * scale.pressure;
    r.WeldForceEnd = -10 * scale.force;
    r.HoldForceEnd = 900 * scale.force;
    r.TotalCycleTime = 850 * 0.001;
    r.TriggerForce = 200 * scale.force;
    return r;
}

QByteArray stream(int count, MeasurementSystem system)
{
    QByteArray bytes;
    for (int cycle = 1; cycle <= count; ++cycle)
        bytes += Function26Frame::encode(record(cycle, system), system) + QByteArray(1, '\x55');
    return bytes;
}

} // namespace SampleWelds

char *toString(const CorvaneFUN26 &record)
{
    return QTest::toString(record.Record(RegionalFormat(QLocale::c())));
}

#include "Function26Frame.h"

#include "CorvaneParser.h"

#include <QtEndian>

#include <cmath>
#include <limits>

namespace Function26Frame {

namespace {

class DataWriter
{
public:
    explicit DataWriter(QByteArray &out)
        : m_out(out)
    {
    }

    void byte(quint8 value) { m_out.append(char(value)); }
    void integer(qint16 value) { put(qToBigEndian(value)); }
    void longInt(qint32 value) { put(qToBigEndian(value)); }

    // A scaled value back to its raw integer of the given width.
    template <typename Raw>
    void scaled(double value, double factor)
    {
        const double raw = std::round(value / factor);
        const double low = double(std::numeric_limits<Raw>::min());
        const double high = double(std::numeric_limits<Raw>::max());
        const Raw clamped = std::isnan(raw) ? Raw(0) : Raw(qBound(low, raw, high));
        put(qToBigEndian(clamped));
    }

private:
    template <typename T>
    void put(T bigEndian)
    {
        m_out.append(reinterpret_cast<const char *>(&bigEndian), sizeof bigEndian);
    }

    QByteArray &m_out;
};

} // namespace

QByteArray encodeFrame(qint16 function, QByteArrayView data, std::optional<qint16> lengthField)
{
    QByteArray frame;
    frame.reserve(data.size() + 8);
    DataWriter writer(frame);
    writer.byte(CorvaneParser::DLE);
    writer.byte(CorvaneParser::STX);
    writer.integer(lengthField.value_or(qint16(data.size() + 2)));
    writer.integer(function);
    frame.append(data.data(), data.size());
    writer.byte(CorvaneParser::DLE);
    writer.byte(CorvaneParser::ETX);
    return frame;
}

QByteArray encodeData(const CorvaneFUN26 &r, MeasurementSystem system)
{
    const Function26Scale scale = Function26Scale::forSystem(system);
    QByteArray data;
    data.reserve(CorvaneFUN26::kDataBytes);
    DataWriter w(data);
    w.longInt(r.CycleCount);
    w.integer(r.Hour);
    w.byte(r.Minute);
    w.byte(r.Second);
    w.integer(r.Year);
    w.byte(r.Month);
    w.byte(r.Day);
    w.scaled<qint32>(r.ActualWeldTime, 0.001);
    w.scaled<qint32>(r.TotalEnergy, 0.1);
    w.scaled<qint32>(r.ActualDistance, scale.distance);
    w.scaled<qint32>(r.ActualWeldCollapse, scale.distance);
    w.scaled<qint32>(r.ActualTotalCollapse, scale.distance);
    w.longInt(r.ActualStartFrequency);
    w.longInt(r.ActualEndFrequency);
    w.longInt(r.FrequencyChange);
    w.longInt(r.FrequencyMinimum);
    w.longInt(r.FrequencyMaximum);
    w.scaled<qint32>(r.ActualVelocity, scale.velocity);
    w.scaled<qint32>(r.TriggerDistance, scale.distance);
    w.longInt(r.RejectPartAlarms);
    w.longInt(r.SuspectPartAlarms);
    w.longInt(r.NoCycleAlarms);
    w.longInt(r.OverloadAlarms);
    w.longInt(r.EquipmentFailureAlarms);
    w.longInt(r.CycleModifiedAlarms);
    w.byte(r.PresetNumber);
    w.byte(r.Units);
    w.byte(r.PresentLimitsChanged);
    w.byte(r.ReservedByte);
    w.longInt(r.NoteAlarms);
    w.longInt(r.SetAmplitudeA);
    w.longInt(r.SetAmplitudeB);
    w.byte(r.WeldMode);
    w.byte(r.PowerSupplyControlFlags);
    w.scaled<qint16>(r.PeakPower, 0.1);
    w.scaled<qint16>(r.WeldPresure, scale.pressure);
    w.scaled<qint16>(r.WeldForceEnd, scale.force);
    w.scaled<qint16>(r.HoldForceEnd, scale.force);
    w.scaled<qint32>(r.TotalCycleTime, 0.001);
    w.scaled<qint16>(r.TriggerForce, scale.force);
    return data;
}

QByteArray encode(const CorvaneFUN26 &record, MeasurementSystem system)
{
    return encodeFrame(CorvaneParser::kWeldRecordFunction, encodeData(record, system));
}

} // namespace Function26Frame

#pragma once

#include "platform/MeasurementSystem.h"

#include <QByteArrayView>
#include <QDateTime>
#include <QString>

class qlxLanguage;
class RegionalFormat;

// The weld record that a power supply sends after every weld cycle (function 26),
// already scaled into display units. A plain value: the decoder sets every field once,
// in the order below, which is also the order of the fields on the wire.
struct CorvaneFUN26
{
    static constexpr int kDataBytes = 116;
    static constexpr int kRecordColumns = 39;

    QDateTime AcquiredTime; // when the record was decoded, not the power supply's clock
    qint32 CycleCount = 0;
    qint16 Hour = 0;
    quint8 Minute = 0;
    quint8 Second = 0;
    qint16 Year = 0;
    quint8 Month = 0;
    quint8 Day = 0;
    double ActualWeldTime = 0;
    double TotalEnergy = 0;
    double ActualDistance = 0;
    double ActualWeldCollapse = 0;
    double ActualTotalCollapse = 0;
    qint32 ActualStartFrequency = 0;
    qint32 ActualEndFrequency = 0;
    qint32 FrequencyChange = 0;
    qint32 FrequencyMinimum = 0;
    qint32 FrequencyMaximum = 0;
    double ActualVelocity = 0;
    double TriggerDistance = 0;
    qint32 RejectPartAlarms = 0;
    qint32 SuspectPartAlarms = 0;
    qint32 NoCycleAlarms = 0;
    qint32 OverloadAlarms = 0;
    qint32 EquipmentFailureAlarms = 0;
    qint32 CycleModifiedAlarms = 0;
    quint8 PresetNumber = 0;
    quint8 Units = 0; // stored only: the program's own unit setting decides the scaling
    quint8 PresentLimitsChanged = 0;
    quint8 ReservedByte = 0;
    qint32 NoteAlarms = 0;
    qint32 SetAmplitudeA = 0;
    qint32 SetAmplitudeB = 0;
    quint8 WeldMode = 0;
    quint8 PowerSupplyControlFlags = 0;
    double PeakPower = 0;
    double WeldPresure = 0;
    double WeldForceEnd = 0;
    double HoldForceEnd = 0;
    double TotalCycleTime = 0;
    double TriggerForce = 0;

    // The translated names of the weld-mode bits that are set, or "----" for none.
    QString WeldModeDescription(const qlxLanguage &language) const;
    // The 39 translated column captions of a data log, joined by tabs.
    static QString HeaderRecord(const qlxLanguage &language);
    // The 39 values of a data log line, joined by tabs; the last two are empty.
    QString Record(const RegionalFormat &format) const;

    friend bool operator==(const CorvaneFUN26 &, const CorvaneFUN26 &) = default;
};

// The factors that turn raw integers of the wire into display units.
struct Function26Scale
{
    double distance;
    double velocity;
    double pressure;
    double force;

    static Function26Scale forSystem(MeasurementSystem system);
};

// Decodes the 116 data bytes at data, which the caller has checked are all there.
void decodeFunction26(const uchar *data, const Function26Scale &scale,
                      const QDateTime &acquiredTime, CorvaneFUN26 &record);

namespace CorvaneUSWSupport {

// Decodes the 116 data bytes at pos (a frame's offset 6) in the given unit system,
// stamping acquiredTime.
CorvaneFUN26 CreateFunction26(QByteArrayView buffer, qsizetype pos, MeasurementSystem system,
                              const QDateTime &acquiredTime);

} // namespace CorvaneUSWSupport

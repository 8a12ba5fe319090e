#include "ConsoleText.h"

#include "SetupCaptions.h"

#include "platform/RegionalFormat.h"
#include "platform/qlxLanguage.h"
#include "protocol/CorvaneFUN26.h"

namespace ConsoleText {

namespace {

const QLatin1StringView kLineEnd("\r\n");

} // namespace

QString hexEntry(QByteArrayView bytes)
{
    static constexpr char kDigits[] = "0123456789ABCDEF";
    QString entry = QStringLiteral("Length: %1").arg(bytes.size());
    entry += kLineEnd;
    entry.reserve(entry.size() + bytes.size() * 3 + kLineEnd.size());
    for (const char byte : bytes) {
        const auto value = quint8(byte);
        entry += QLatin1Char(kDigits[value >> 4]);
        entry += QLatin1Char(kDigits[value & 0x0F]);
        entry += u' ';
    }
    return entry.trimmed() + kLineEnd;
}

QString recordEntry(const CorvaneFUN26 &record, const qlxLanguage &language,
                    const RegionalFormat &format)
{
    const auto integer = [](qint64 value) { return QString::number(value); };
    const auto real = [&format](double value) { return format.number(value); };
    // In the order of SetupCaptions::kRecordFields.
    const std::array<QString, SetupCaptions::kRecordFields.size()> values = {
        integer(record.CycleCount),
        integer(record.Hour),
        integer(record.Minute),
        integer(record.Second),
        integer(record.Year),
        integer(record.Month),
        integer(record.Day),
        real(record.ActualWeldTime),
        real(record.TotalEnergy),
        real(record.ActualDistance),
        real(record.ActualWeldCollapse),
        real(record.ActualTotalCollapse),
        integer(record.ActualStartFrequency),
        integer(record.ActualEndFrequency),
        integer(record.FrequencyChange),
        integer(record.FrequencyMinimum),
        integer(record.FrequencyMaximum),
        real(record.ActualVelocity),
        real(record.TriggerDistance),
        integer(record.RejectPartAlarms),
        integer(record.SuspectPartAlarms),
        integer(record.NoCycleAlarms),
        integer(record.OverloadAlarms),
        integer(record.EquipmentFailureAlarms),
        integer(record.CycleModifiedAlarms),
        integer(record.PresetNumber),
        integer(record.NoteAlarms),
        integer(record.SetAmplitudeA),
        integer(record.SetAmplitudeB),
        integer(record.WeldMode),
        integer(record.PowerSupplyControlFlags),
        real(record.PeakPower),
        real(record.WeldPresure),
        real(record.WeldForceEnd),
        real(record.HoldForceEnd),
        real(record.TotalCycleTime),
        real(record.TriggerForce),
    };
    QString entry = QString(32, u'-') + kLineEnd;
    for (size_t i = 0; i < values.size(); ++i) {
        entry += QStringLiteral("    ");
        entry += language.Translate(SetupCaptions::kRecordFields[i]);
        entry += values[i];
        entry += kLineEnd;
    }
    return entry;
}

} // namespace ConsoleText

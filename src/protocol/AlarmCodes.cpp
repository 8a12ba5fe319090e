#include "AlarmCodes.h"

#include "CorvaneFUN26.h"

#include "platform/ProgramError.h"

#include <initializer_list>
#include <utility>

namespace CorvaneUSWSupport {

namespace {

AlarmTable table(std::initializer_list<std::pair<int, const char16_t *>> entries)
{
    AlarmTable codes;
    for (const auto &[bit, token] : entries)
        codes[size_t(bit)] = QString::fromUtf16(token);
    return codes;
}

} // namespace

AlarmTable GetRejectPartAlarmCodes()
{
    return table({
        {1, u"6068|-R Energy Limit"},      {2, u"6069|+R Energy Limit"},
        {3, u"6070|-R Pk Power Limit"},    {4, u"6071|+R Pk Power Limit"},
        {5, u"6072|-R Col Dist Limit"},    {6, u"6073|+R Col Dist Limit"},
        {7, u"6074|-R Abs Dist Limit"},    {8, u"6075|+R Abs Dist Limit"},
        {9, u"6076|-R Trig Dist Limit"},   {10, u"6077|+R Trig Dist Limit"},
        {11, u"6078|-R Weld Force Limit"}, {12, u"6079|+R Weld Force Limit"},
        {13, u"6080|-R Time Limit"},       {14, u"6081|+R Time Limit"},
        {18, u"6082|LL Not Reached"},
    });
}

AlarmTable GetSuspectPartAlarmCodes()
{
    return table({
        {1, u"6083|-S Energy Limit"},      {2, u"6084|+S Energy Limit"},
        {3, u"6085|-S Pk Power Limit"},    {4, u"6086|+S Pk Power Limit"},
        {5, u"6087|-S Col Dist Limit"},    {6, u"6088|+S Col Dist Limit"},
        {7, u"6089|-S Abs Dist Limit"},    {8, u"6090|+S Abs Dist Limit"},
        {9, u"6091|-S Trig Dist Limit"},   {10, u"6092|+S Trig Dist Limit"},
        {11, u"6093|-S Weld Force Limit"}, {12, u"6094|+S Weld Force Limit"},
        {13, u"6095|-S Time Limit"},       {14, u"6096|+S Time Limit"},
    });
}

AlarmTable GetNoCycleAlarmCodes()
{
    return table({
        {1, u"6097|Upper Limit Timeout"},  {3, u"6098|Trg before Pretrg"},
        {4, u"6099|Trigger Timeout"},      {6, u"6100|LLS abort before TRS"},
        {7, u"6101|External Cycle Abort"}, {8, u"6102|Missing Part Abort"},
        {9, u"6103|Abs before Trg"},       {10, u"6104|Amp Step before Trg"},
        {11, u"6105|Frc Step before Trg"}, {12, u"6106|Ground Detect Abort"},
    });
}

AlarmTable GetOverloadAlarmCodes()
{
    return table({
        {1, u"6107|Test Overload"},       {2, u"6108|Pretrigger Overload"},
        {3, u"6109|Seek Overload"},       {4, u"6110|Power Supply O/L"},
        {5, u"6111|Cont Pwr Limit"},      {6, u"6112|Afterburst Overload"},
        {7, u"6113|Pre-Weld Seek O/L"},   {8, u"6114|Post Weld Seek O/L"},
    });
}

// Bits 2 and 3 both read "Upper Limit Switch", under two numbers, as the power supply's
// documentation lists them.
AlarmTable GetEquipmentAlarmCodes()
{
    return table({
        {1, u"6115|Encoder Failed"},        {2, u"6116|Upper Limit Switch"},
        {3, u"6117|Upper Limit Switch"},    {4, u"6118|Door Sw Fail"},
        {6, u"6119|Solenoid Drive Fail"},   {7, u"6120|Thermal Overload"},
        {8, u"6121|Preset Data/BBR"},       {9, u"6122|Horn Return Timeout"},
        {10, u"6123|Actuator NovRam"},      {11, u"6124|P/S NovRam"},
        {12, u"6125|Start Sw Time"},        {13, u"6126|MPS Switch Failed"},
        {14, u"6127|Wrong Actuator"},       {15, u"6128|Ultrasonic P/S"},
        {16, u"6129|Printer Buffer Full"},  {17, u"6130|Start Switch Closed"},
        {18, u"6131|Pretrigger Timeout"},   {20, u"6132|Recalibrate Actuator"},
        {21, u"6133|Act Clear Function"},   {22, u"6134|Stack"},
        {23, u"6135|Start Switches Lost"},  {24, u"6136|Actuator Type"},
        {25, u"6137|Sys. Pres. Incorrect"},
    });
}

// Several step alarms share one text on purpose: the power supply raises "No Amplitude
// Step" and "No Force Step" from more than one bit.
AlarmTable GetCycleModifiedAlarmCodes()
{
    return table({
        {1, u"6138|Trigger Lost in Hold"}, {2, u"6139|Ground Detect Abort"},
        {3, u"6140|Max Timeout"},          {4, u"6141|No Amplitude Step"},
        {5, u"6142|No Force Step"},        {6, u"6141|No Amplitude Step"},
        {7, u"6142|No Force Step"},        {8, u"6141|No Amplitude Step"},
        {9, u"6141|No Amplitude Step"},    {10, u"6142|No Force Step"},
        {11, u"6141|No Amplitude Step"},   {12, u"6141|No Amplitude Step"},
        {13, u"6142|No Force Step"},       {14, u"6143|Trigger Lost in Weld"},
        {15, u"6144|External Cycle Abort"}, {16, u"6145|Amp B Not Reached"},
        {17, u"6149|No Amp Reached"},      {18, u"6146|Amp A Not Reached"},
        {19, u"6145|Amp B Not Reached"},   {20, u"6147|Amp Exceeded"},
        {21, u"6148|Energy Not Reached"},  {22, u"6150|Trigger > End Force"},
        {23, u"6142|No Force Step"},
    });
}

AlarmTable GetNoteAlarmCodes()
{
    return table({
        {1, u"6151|Act Clr Not Reached"},  {2, u"6152|Max Energy Reached"},
        {3, u"6153|Printer Buffer 80%"},   {4, u"6154|Cont Pwr Limit"},
        {5, u"6155|Peak Power Cutoff"},    {6, u"6156|Absolute Cutoff"},
        {7, u"6157|Time Extended"},        {8, u"6158|Act Recal Suggested"},
        {9, u"6159|Collapse Cutoff"},      {10, u"6160|Act Clr Not Reached"},
    });
}

AlarmTable RejectPartAlarmCodes()
{
    static const AlarmTable kept = GetRejectPartAlarmCodes();
    return kept;
}

AlarmTable SuspectPartAlarmCodes()
{
    static const AlarmTable kept = GetSuspectPartAlarmCodes();
    return kept;
}

AlarmTable NoCycleAlarmCodes()
{
    static const AlarmTable kept = GetNoCycleAlarmCodes();
    return kept;
}

AlarmTable OverloadAlarmCodes()
{
    static const AlarmTable kept = GetOverloadAlarmCodes();
    return kept;
}

AlarmTable EquipmentAlarmCodes()
{
    static const AlarmTable kept = GetEquipmentAlarmCodes();
    return kept;
}

AlarmTable CycleModifiedAlarmCodes()
{
    static const AlarmTable kept = GetCycleModifiedAlarmCodes();
    return kept;
}

AlarmTable NoteAlarmCodes()
{
    static const AlarmTable kept = GetNoteAlarmCodes();
    return kept;
}

AlarmTable AlarmCodes(AlarmGroup group)
{
    switch (group) {
    case AlarmGroup::RejectPart:
        return RejectPartAlarmCodes();
    case AlarmGroup::SuspectPart:
        return SuspectPartAlarmCodes();
    case AlarmGroup::NoCycle:
        return NoCycleAlarmCodes();
    case AlarmGroup::Overload:
        return OverloadAlarmCodes();
    case AlarmGroup::EquipmentFailure:
        return EquipmentAlarmCodes();
    case AlarmGroup::CycleModified:
        return CycleModifiedAlarmCodes();
    case AlarmGroup::Note:
        return NoteAlarmCodes();
    }
    Q_UNREACHABLE();
}

qint32 ConvertBitToLong(qint32 bit)
{
    if (bit < 0 || bit > 31)
        throw ProgramError::raised(QStringLiteral("Value must be 0 to 31"),
                                   QStringLiteral("CorvaneUSWSupport.ConvertBitToLong"));
    return qint32(quint32(1) << bit);
}

} // namespace CorvaneUSWSupport

qint32 alarmWord(const CorvaneFUN26 &record, AlarmGroup group)
{
    return alarmWord(const_cast<CorvaneFUN26 &>(record), group);
}

qint32 &alarmWord(CorvaneFUN26 &record, AlarmGroup group)
{
    switch (group) {
    case AlarmGroup::RejectPart:
        return record.RejectPartAlarms;
    case AlarmGroup::SuspectPart:
        return record.SuspectPartAlarms;
    case AlarmGroup::NoCycle:
        return record.NoCycleAlarms;
    case AlarmGroup::Overload:
        return record.OverloadAlarms;
    case AlarmGroup::EquipmentFailure:
        return record.EquipmentFailureAlarms;
    case AlarmGroup::CycleModified:
        return record.CycleModifiedAlarms;
    case AlarmGroup::Note:
        return record.NoteAlarms;
    }
    Q_UNREACHABLE();
}

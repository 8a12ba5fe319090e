#include "TestSuites.h"

#include "platform/ProgramError.h"
#include "protocol/AlarmCodes.h"
#include "protocol/CorvaneFUN26.h"

#include <QTest>

#include <limits>

using namespace CorvaneUSWSupport;

namespace {

// The seven alarm tables as the power supply's documentation lists them, typed in anew
// rather than copied from the program: "bit:ID text" entries, every other bit empty.
// The repetitions (6116/6117, 6141, 6142, 6145, 6151/6160) are the documentation's own.
const std::array<const char *, 7> kDocumentedTables = {
    "1:6068 -R Energy Limit;2:6069 +R Energy Limit;3:6070 -R Pk Power Limit;"
    "4:6071 +R Pk Power Limit;5:6072 -R Col Dist Limit;6:6073 +R Col Dist Limit;"
    "7:6074 -R Abs Dist Limit;8:6075 +R Abs Dist Limit;9:6076 -R Trig Dist Limit;"
    "10:6077 +R Trig Dist Limit;11:6078 -R Weld Force Limit;12:6079 +R Weld Force Limit;"
    "13:6080 -R Time Limit;14:6081 +R Time Limit;18:6082 LL Not Reached",
    "1:6083 -S Energy Limit;2:6084 +S Energy Limit;3:6085 -S Pk Power Limit;"
    "4:6086 +S Pk Power Limit;5:6087 -S Col Dist Limit;6:6088 +S Col Dist Limit;"
    "7:6089 -S Abs Dist Limit;8:6090 +S Abs Dist Limit;9:6091 -S Trig Dist Limit;"
    "10:6092 +S Trig Dist Limit;11:6093 -S Weld Force Limit;12:6094 +S Weld Force Limit;"
    "13:6095 -S Time Limit;14:6096 +S Time Limit",
    "1:6097 Upper Limit Timeout;3:6098 Trg before Pretrg;4:6099 Trigger Timeout;"
    "6:6100 LLS abort before TRS;7:6101 External Cycle Abort;8:6102 Missing Part Abort;"
    "9:6103 Abs before Trg;10:6104 Amp Step before Trg;11:6105 Frc Step before Trg;"
    "12:6106 Ground Detect Abort",
    "1:6107 Test Overload;2:6108 Pretrigger Overload;3:6109 Seek Overload;"
    "4:6110 Power Supply O/L;5:6111 Cont Pwr Limit;6:6112 Afterburst Overload;"
    "7:6113 Pre-Weld Seek O/L;8:6114 Post Weld Seek O/L",
    "1:6115 Encoder Failed;2:6116 Upper Limit Switch;3:6117 Upper Limit Switch;"
    "4:6118 Door Sw Fail;6:6119 Solenoid Drive Fail;7:6120 Thermal Overload;"
    "8:6121 Preset Data/BBR;9:6122 Horn Return Timeout;10:6123 Actuator NovRam;"
    "11:6124 P/S NovRam;12:6125 Start Sw Time;13:6126 MPS Switch Failed;14:6127 Wrong Actuator;"
    "15:6128 Ultrasonic P/S;16:6129 Printer Buffer Full;17:6130 Start Switch Closed;"
    "18:6131 Pretrigger Timeout;20:6132 Recalibrate Actuator;21:6133 Act Clear Function;"
    "22:6134 Stack;23:6135 Start Switches Lost;24:6136 Actuator Type;"
    "25:6137 Sys. Pres. Incorrect",
    "1:6138 Trigger Lost in Hold;2:6139 Ground Detect Abort;3:6140 Max Timeout;"
    "4:6141 No Amplitude Step;5:6142 No Force Step;6:6141 No Amplitude Step;"
    "7:6142 No Force Step;8:6141 No Amplitude Step;9:6141 No Amplitude Step;"
    "10:6142 No Force Step;11:6141 No Amplitude Step;12:6141 No Amplitude Step;"
    "13:6142 No Force Step;14:6143 Trigger Lost in Weld;15:6144 External Cycle Abort;"
    "16:6145 Amp B Not Reached;17:6149 No Amp Reached;18:6146 Amp A Not Reached;"
    "19:6145 Amp B Not Reached;20:6147 Amp Exceeded;21:6148 Energy Not Reached;"
    "22:6150 Trigger > End Force;23:6142 No Force Step",
    "1:6151 Act Clr Not Reached;2:6152 Max Energy Reached;3:6153 Printer Buffer 80%;"
    "4:6154 Cont Pwr Limit;5:6155 Peak Power Cutoff;6:6156 Absolute Cutoff;7:6157 Time Extended;"
    "8:6158 Act Recal Suggested;9:6159 Collapse Cutoff;10:6160 Act Clr Not Reached",
};

AlarmTable documentedTable(int group)
{
    AlarmTable table;
    for (const QString &entry : QString::fromUtf8(kDocumentedTables[size_t(group)]).split(u';')) {
        const qsizetype colon = entry.indexOf(u':');
        const qsizetype blank = entry.indexOf(u' ');
        table[entry.left(colon).toUInt()] =
            entry.mid(colon + 1, blank - colon - 1) + u'|' + entry.mid(blank + 1);
    }
    return table;
}

} // namespace

// The seven alarm tables that name the bits of a weld record's alarm words, and the
// conversion of a bit number to its mask.
class TestAlarmCodes : public QObject
{
    Q_OBJECT

private slots:
    // Every entry of every table, so that a typo, a shifted line or a tidied-away
    // repetition anywhere fails; the builder, the kept table and the table by group agree,
    // and a caller changing its copy leaves the kept table alone.
    void tablesAsDocumented()
    {
        constexpr AlarmTable (*kBuilders[])() = {
            GetRejectPartAlarmCodes, GetSuspectPartAlarmCodes, GetNoCycleAlarmCodes,
            GetOverloadAlarmCodes,   GetEquipmentAlarmCodes,   GetCycleModifiedAlarmCodes,
            GetNoteAlarmCodes};
        constexpr AlarmTable (*kKept[])() = {
            RejectPartAlarmCodes, SuspectPartAlarmCodes,   NoCycleAlarmCodes, OverloadAlarmCodes,
            EquipmentAlarmCodes,  CycleModifiedAlarmCodes, NoteAlarmCodes};
        for (int group = 0; group < 7; ++group) {
            const AlarmTable expected = documentedTable(group);
            for (size_t bit = 0; bit < 32; ++bit) {
                if (kBuilders[group]()[bit] != expected[bit])
                    QFAIL(qPrintable(QStringLiteral("group %1 bit %2: \"%3\"")
                                         .arg(group)
                                         .arg(bit)
                                         .arg(kBuilders[group]()[bit])));
            }
            AlarmTable copy = kKept[group]();
            QCOMPARE(copy, expected);
            copy.fill(QStringLiteral("changed"));
            QCOMPARE(kKept[group](), expected);
            QCOMPARE(AlarmCodes(AlarmGroup(group)), expected);
        }
    }

    // A mask of 0 stands for a bit outside 0..31, which must fail.
    void convertBitToLong_data()
    {
        QTest::addColumn<qint32>("bit");
        QTest::addColumn<qint32>("mask");
        QTest::newRow("0") << 0 << 1;
        QTest::newRow("18") << 18 << 262144;
        QTest::newRow("30") << 30 << 1073741824;
        QTest::newRow("31") << 31 << std::numeric_limits<qint32>::min();
        QTest::newRow("32") << 32 << 0;
        QTest::newRow("-1") << -1 << 0;
        QTest::newRow("lowest") << std::numeric_limits<qint32>::min() << 0;
    }

    void convertBitToLong()
    {
        QFETCH(qint32, bit);
        QFETCH(qint32, mask);
        try {
            QCOMPARE(ConvertBitToLong(bit), mask);
            QVERIFY2(mask != 0, "a bit outside 0..31 was converted");
        } catch (const ProgramError &error) {
            QCOMPARE(mask, 0);
            QCOMPARE(error.number(), -2147221504);
            QCOMPARE(error.description(), QStringLiteral("Value must be 0 to 31"));
            QVERIFY2(error.source().contains(QLatin1String("ConvertBitToLong")),
                     qPrintable(error.source()));
        }
    }

    void alarmWordOfEachGroup()
    {
        CorvaneFUN26 record;
        for (int g = 0; g < 7; ++g)
            alarmWord(record, AlarmGroup(g)) = g + 1;
        const QList<qint32> words = {
            record.RejectPartAlarms, record.SuspectPartAlarms,      record.NoCycleAlarms,
            record.OverloadAlarms,   record.EquipmentFailureAlarms, record.CycleModifiedAlarms,
            record.NoteAlarms};
        QCOMPARE(words, QList<qint32>({1, 2, 3, 4, 5, 6, 7}));
        for (int g = 0; g < 7; ++g)
            QCOMPARE(alarmWord(std::as_const(record), AlarmGroup(g)), g + 1);
    }
};

CORVANE_TEST_SUITE(TestAlarmCodes)
#include "tst_alarmcodes.moc"

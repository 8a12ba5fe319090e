#include "platform/ProgramError.h"
#include "platform/qlxLanguage.h"
#include "protocol/AlarmCodes.h"
#include "protocol/CorvaneFUN26.h"

#include <QTest>

#include <limits>
#include <map>

using namespace CorvaneUSWSupport;

namespace {

using Entries = std::map<int, QString>;

struct Group
{
    const char *name;
    AlarmGroup group;
    AlarmTable (*build)();
    AlarmTable (*kept)();
    Entries entries;
};

// The alarm names of every group, as the power supply's documentation lists them.
const Entries kRejectPart = {{1, "6068|-R Energy Limit"},      {2, "6069|+R Energy Limit"},
                             {3, "6070|-R Pk Power Limit"},    {4, "6071|+R Pk Power Limit"},
                             {5, "6072|-R Col Dist Limit"},    {6, "6073|+R Col Dist Limit"},
                             {7, "6074|-R Abs Dist Limit"},    {8, "6075|+R Abs Dist Limit"},
                             {9, "6076|-R Trig Dist Limit"},   {10, "6077|+R Trig Dist Limit"},
                             {11, "6078|-R Weld Force Limit"}, {12, "6079|+R Weld Force Limit"},
                             {13, "6080|-R Time Limit"},       {14, "6081|+R Time Limit"},
                             {18, "6082|LL Not Reached"}};

const Entries kSuspectPart = {{1, "6083|-S Energy Limit"},      {2, "6084|+S Energy Limit"},
                              {3, "6085|-S Pk Power Limit"},    {4, "6086|+S Pk Power Limit"},
                              {5, "6087|-S Col Dist Limit"},    {6, "6088|+S Col Dist Limit"},
                              {7, "6089|-S Abs Dist Limit"},    {8, "6090|+S Abs Dist Limit"},
                              {9, "6091|-S Trig Dist Limit"},   {10, "6092|+S Trig Dist Limit"},
                              {11, "6093|-S Weld Force Limit"}, {12, "6094|+S Weld Force Limit"},
                              {13, "6095|-S Time Limit"},       {14, "6096|+S Time Limit"}};

const Entries kNoCycle = {{1, "6097|Upper Limit Timeout"},  {3, "6098|Trg before Pretrg"},
                          {4, "6099|Trigger Timeout"},      {6, "6100|LLS abort before TRS"},
                          {7, "6101|External Cycle Abort"}, {8, "6102|Missing Part Abort"},
                          {9, "6103|Abs before Trg"},       {10, "6104|Amp Step before Trg"},
                          {11, "6105|Frc Step before Trg"}, {12, "6106|Ground Detect Abort"}};

const Entries kOverload = {{1, "6107|Test Overload"},     {2, "6108|Pretrigger Overload"},
                           {3, "6109|Seek Overload"},     {4, "6110|Power Supply O/L"},
                           {5, "6111|Cont Pwr Limit"},    {6, "6112|Afterburst Overload"},
                           {7, "6113|Pre-Weld Seek O/L"}, {8, "6114|Post Weld Seek O/L"}};

const Entries kEquipmentFailure = {
    {1, "6115|Encoder Failed"},       {2, "6116|Upper Limit Switch"},
    {3, "6117|Upper Limit Switch"},   {4, "6118|Door Sw Fail"},
    {6, "6119|Solenoid Drive Fail"},  {7, "6120|Thermal Overload"},
    {8, "6121|Preset Data/BBR"},      {9, "6122|Horn Return Timeout"},
    {10, "6123|Actuator NovRam"},     {11, "6124|P/S NovRam"},
    {12, "6125|Start Sw Time"},       {13, "6126|MPS Switch Failed"},
    {14, "6127|Wrong Actuator"},      {15, "6128|Ultrasonic P/S"},
    {16, "6129|Printer Buffer Full"}, {17, "6130|Start Switch Closed"},
    {18, "6131|Pretrigger Timeout"},  {20, "6132|Recalibrate Actuator"},
    {21, "6133|Act Clear Function"},  {22, "6134|Stack"},
    {23, "6135|Start Switches Lost"}, {24, "6136|Actuator Type"},
    {25, "6137|Sys. Pres. Incorrect"}};

const Entries kCycleModified = {
    {1, "6138|Trigger Lost in Hold"},  {2, "6139|Ground Detect Abort"},
    {3, "6140|Max Timeout"},           {4, "6141|No Amplitude Step"},
    {5, "6142|No Force Step"},         {6, "6141|No Amplitude Step"},
    {7, "6142|No Force Step"},         {8, "6141|No Amplitude Step"},
    {9, "6141|No Amplitude Step"},     {10, "6142|No Force Step"},
    {11, "6141|No Amplitude Step"},    {12, "6141|No Amplitude Step"},
    {13, "6142|No Force Step"},        {14, "6143|Trigger Lost in Weld"},
    {15, "6144|External Cycle Abort"}, {16, "6145|Amp B Not Reached"},
    {17, "6149|No Amp Reached"},       {18, "6146|Amp A Not Reached"},
    {19, "6145|Amp B Not Reached"},    {20, "6147|Amp Exceeded"},
    {21, "6148|Energy Not Reached"},   {22, "6150|Trigger > End Force"},
    {23, "6142|No Force Step"}};

const Entries kNote = {{1, "6151|Act Clr Not Reached"}, {2, "6152|Max Energy Reached"},
                       {3, "6153|Printer Buffer 80%"},  {4, "6154|Cont Pwr Limit"},
                       {5, "6155|Peak Power Cutoff"},   {6, "6156|Absolute Cutoff"},
                       {7, "6157|Time Extended"},       {8, "6158|Act Recal Suggested"},
                       {9, "6159|Collapse Cutoff"},     {10, "6160|Act Clr Not Reached"}};

const std::array<Group, 7> &groups()
{
    static const std::array<Group, 7> all = {{
        {"reject part", AlarmGroup::RejectPart, GetRejectPartAlarmCodes, RejectPartAlarmCodes,
         kRejectPart},
        {"suspect part", AlarmGroup::SuspectPart, GetSuspectPartAlarmCodes, SuspectPartAlarmCodes,
         kSuspectPart},
        {"no cycle", AlarmGroup::NoCycle, GetNoCycleAlarmCodes, NoCycleAlarmCodes, kNoCycle},
        {"overload", AlarmGroup::Overload, GetOverloadAlarmCodes, OverloadAlarmCodes, kOverload},
        {"equipment failure", AlarmGroup::EquipmentFailure, GetEquipmentAlarmCodes,
         EquipmentAlarmCodes, kEquipmentFailure},
        {"cycle modified", AlarmGroup::CycleModified, GetCycleModifiedAlarmCodes,
         CycleModifiedAlarmCodes, kCycleModified},
        {"note", AlarmGroup::Note, GetNoteAlarmCodes, NoteAlarmCodes, kNote},
    }};
    return all;
}

// The alarms that a word names, as the monitor lists them: every set bit whose table
// entry is not empty.
QStringList namedAlarms(qint32 word, const AlarmTable &table)
{
    QStringList names;
    for (qint32 bit = 0; bit < 32; ++bit) {
        if ((word & ConvertBitToLong(bit)) != 0 && !table[size_t(bit)].isEmpty())
            names << table[size_t(bit)];
    }
    return names;
}

} // namespace

// The seven alarm tables that name the bits of a weld record's alarm words, and the
// conversion of a bit number to its mask.
class TestAlarmCodes : public QObject
{
    Q_OBJECT

private slots:
    // Every bit of every group, listed or not: the builder, the kept table and the
    // table by group must all hold the listed token or nothing.
    void everyEntry_data()
    {
        QTest::addColumn<int>("group");
        QTest::addColumn<int>("bit");
        QTest::addColumn<QString>("token");
        for (size_t g = 0; g < groups().size(); ++g) {
            const Group &group = groups()[g];
            for (int bit = 0; bit < 32; ++bit) {
                const auto found = group.entries.find(bit);
                const QString token = found == group.entries.end() ? QString() : found->second;
                QTest::addRow("%s bit %d", group.name, bit) << int(g) << bit << token;
            }
        }
    }

    void everyEntry()
    {
        QFETCH(int, group);
        QFETCH(int, bit);
        QFETCH(QString, token);
        const Group &g = groups()[size_t(group)];
        QCOMPARE(g.build()[size_t(bit)], token);
        QCOMPARE(g.kept()[size_t(bit)], token);
        QCOMPARE(AlarmCodes(g.group)[size_t(bit)], token);
    }

    void bitZeroNamesNoAlarmInAnyGroup()
    {
        for (const Group &group : groups()) {
            QVERIFY2(group.build()[0].isEmpty(), group.name);
            QVERIFY2(namedAlarms(1, group.kept()).isEmpty(), group.name);
        }
    }

    // Some texts repeat on purpose; the repetitions must not be tidied away.
    void deliberateRepetitions()
    {
        const AlarmTable equipment = EquipmentAlarmCodes();
        QCOMPARE(qlxLanguage::defaultText(equipment[2]), qlxLanguage::defaultText(equipment[3]));
        QCOMPARE(qlxLanguage::tokenNumber(equipment[2]), 6116);
        QCOMPARE(qlxLanguage::tokenNumber(equipment[3]), 6117);

        const AlarmTable modified = CycleModifiedAlarmCodes();
        for (const size_t bit : {4, 6, 8, 9, 11, 12})
            QCOMPARE(modified[bit], QStringLiteral("6141|No Amplitude Step"));
        for (const size_t bit : {5, 7, 10, 13, 23})
            QCOMPARE(modified[bit], QStringLiteral("6142|No Force Step"));
        QCOMPARE(modified[16], modified[19]);
        QCOMPARE(qlxLanguage::tokenNumber(modified[17]), 6149);

        const AlarmTable note = NoteAlarmCodes();
        QCOMPARE(qlxLanguage::defaultText(note[1]), QStringLiteral("Act Clr Not Reached"));
        QCOMPARE(qlxLanguage::defaultText(note[10]), QStringLiteral("Act Clr Not Reached"));
        QCOMPARE(qlxLanguage::tokenNumber(note[1]), 6151);
        QCOMPARE(qlxLanguage::tokenNumber(note[10]), 6160);
    }

    void convertBitToLong_data()
    {
        QTest::addColumn<qint32>("bit");
        QTest::addColumn<qint32>("mask");
        QTest::newRow("0") << 0 << 1;
        QTest::newRow("1") << 1 << 2;
        QTest::newRow("18") << 18 << 262144;
        QTest::newRow("30") << 30 << 1073741824;
        QTest::newRow("31") << 31 << std::numeric_limits<qint32>::min();
    }

    void convertBitToLong()
    {
        QFETCH(qint32, bit);
        QFETCH(qint32, mask);
        QCOMPARE(ConvertBitToLong(bit), mask);
    }

    void convertBitToLongOutOfRange_data()
    {
        QTest::addColumn<qint32>("bit");
        QTest::newRow("32") << 32;
        QTest::newRow("-1") << -1;
        QTest::newRow("64") << 64;
        QTest::newRow("lowest") << std::numeric_limits<qint32>::min();
        QTest::newRow("highest") << std::numeric_limits<qint32>::max();
    }

    void convertBitToLongOutOfRange()
    {
        QFETCH(qint32, bit);
        try {
            ConvertBitToLong(bit);
            QFAIL("a bit outside 0..31 was converted");
        } catch (const ProgramError &error) {
            QCOMPARE(error.number(), -2147221504);
            QCOMPARE(error.description(), QStringLiteral("Value must be 0 to 31"));
            QVERIFY2(error.source().contains(QLatin1String("ConvertBitToLong")),
                     qPrintable(error.source()));
        }
    }

    void alarmsNamedByAWord_data()
    {
        QTest::addColumn<int>("group");
        QTest::addColumn<qint32>("word");
        QTest::addColumn<QStringList>("names");
        QTest::newRow("reject bit 0") << 0 << 0x1 << QStringList();
        QTest::newRow("reject bit 18") << 0 << (1 << 18) << QStringList{"6082|LL Not Reached"};
        QTest::newRow("reject bits 15 to 17") << 0 << (7 << 15) << QStringList();
        QTest::newRow("reject all bits")
            << 0 << -1 << QStringList{"6068|-R Energy Limit",     "6069|+R Energy Limit",
                                      "6070|-R Pk Power Limit",   "6071|+R Pk Power Limit",
                                      "6072|-R Col Dist Limit",   "6073|+R Col Dist Limit",
                                      "6074|-R Abs Dist Limit",   "6075|+R Abs Dist Limit",
                                      "6076|-R Trig Dist Limit",  "6077|+R Trig Dist Limit",
                                      "6078|-R Weld Force Limit", "6079|+R Weld Force Limit",
                                      "6080|-R Time Limit",       "6081|+R Time Limit",
                                      "6082|LL Not Reached"};
        QTest::newRow("equipment bit 31 only")
            << 4 << std::numeric_limits<qint32>::min() << QStringList();
        QTest::newRow("cycle modified steps")
            << 5 << ((1 << 4) | (1 << 5) | (1 << 6))
            << QStringList{"6141|No Amplitude Step", "6142|No Force Step",
                           "6141|No Amplitude Step"};
        QTest::newRow("note first and last")
            << 6 << ((1 << 1) | (1 << 10))
            << QStringList{"6151|Act Clr Not Reached", "6160|Act Clr Not Reached"};
    }

    void alarmsNamedByAWord()
    {
        QFETCH(int, group);
        QFETCH(qint32, word);
        QFETCH(QStringList, names);
        QCOMPARE(namedAlarms(word, groups()[size_t(group)].kept()), names);
    }

    // A caller may change the table it was given; the kept table stays as it was.
    void changingACopyLeavesTheKeptTable()
    {
        for (const Group &group : groups()) {
            AlarmTable copy = group.kept();
            const AlarmTable original = copy;
            copy.fill(QStringLiteral("changed"));
            QCOMPARE(group.kept(), original);
            QCOMPARE(AlarmCodes(group.group), original);

            AlarmTable byGroup = AlarmCodes(group.group);
            byGroup[1].append(QStringLiteral("!"));
            QCOMPARE(group.kept(), original);
        }
    }

    void alarmWordOfEachGroup()
    {
        CorvaneFUN26 record;
        record.RejectPartAlarms = 1;
        record.SuspectPartAlarms = 2;
        record.NoCycleAlarms = 3;
        record.OverloadAlarms = 4;
        record.EquipmentFailureAlarms = 5;
        record.CycleModifiedAlarms = 6;
        record.NoteAlarms = 7;
        for (size_t g = 0; g < groups().size(); ++g)
            QCOMPARE(alarmWord(std::as_const(record), groups()[g].group), qint32(g + 1));
        alarmWord(record, AlarmGroup::Note) = std::numeric_limits<qint32>::min();
        QCOMPARE(record.NoteAlarms, std::numeric_limits<qint32>::min());
    }
};

QTEST_GUILESS_MAIN(TestAlarmCodes)
#include "tst_alarmcodes.moc"

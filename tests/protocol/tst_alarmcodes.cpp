#include "platform/ProgramError.h"
#include "platform/qlxLanguage.h"
#include "protocol/AlarmCodes.h"
#include "protocol/CorvaneFUN26.h"

#include <QTest>

#include <limits>

using namespace CorvaneUSWSupport;

namespace {

struct Group
{
    const char *name;
    AlarmGroup group;
    AlarmTable (*build)();
    AlarmTable (*kept)();
};

const std::array<Group, 7> kGroups = {{
    {"reject part", AlarmGroup::RejectPart, GetRejectPartAlarmCodes, RejectPartAlarmCodes},
    {"suspect part", AlarmGroup::SuspectPart, GetSuspectPartAlarmCodes, SuspectPartAlarmCodes},
    {"no cycle", AlarmGroup::NoCycle, GetNoCycleAlarmCodes, NoCycleAlarmCodes},
    {"overload", AlarmGroup::Overload, GetOverloadAlarmCodes, OverloadAlarmCodes},
    {"equipment failure", AlarmGroup::EquipmentFailure, GetEquipmentAlarmCodes,
     EquipmentAlarmCodes},
    {"cycle modified", AlarmGroup::CycleModified, GetCycleModifiedAlarmCodes,
     CycleModifiedAlarmCodes},
    {"note", AlarmGroup::Note, GetNoteAlarmCodes, NoteAlarmCodes},
}};

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
    // The builder, the kept table and the table by group agree; the bits a group names,
    // its first and its last entry pin the table against a shift or a lost line.
    void groupTables_data()
    {
        QTest::addColumn<int>("group");
        QTest::addColumn<QList<int>>("bits");
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("last");
        const auto range = [](int from, int to, QList<int> more = {}) {
            QList<int> bits;
            for (int bit = from; bit <= to; ++bit)
                bits << bit;
            return bits + more;
        };
        QTest::newRow("reject part") << 0 << range(1, 14, {18}) << "6068|-R Energy Limit"
                                     << "6082|LL Not Reached";
        QTest::newRow("suspect part") << 1 << range(1, 14) << "6083|-S Energy Limit"
                                      << "6096|+S Time Limit";
        QTest::newRow("no cycle") << 2 << QList<int>{1, 3, 4, 6, 7, 8, 9, 10, 11, 12}
                                  << "6097|Upper Limit Timeout"
                                  << "6106|Ground Detect Abort";
        QTest::newRow("overload") << 3 << range(1, 8) << "6107|Test Overload"
                                  << "6114|Post Weld Seek O/L";
        QTest::newRow("equipment failure")
            << 4 << range(6, 18, {1, 2, 3, 4, 20, 21, 22, 23, 24, 25}) << "6115|Encoder Failed"
            << "6137|Sys. Pres. Incorrect";
        QTest::newRow("cycle modified") << 5 << range(1, 23) << "6138|Trigger Lost in Hold"
                                        << "6142|No Force Step";
        QTest::newRow("note") << 6 << range(1, 10) << "6151|Act Clr Not Reached"
                              << "6160|Act Clr Not Reached";
    }

    void groupTables()
    {
        QFETCH(int, group);
        QFETCH(QList<int>, bits);
        QFETCH(QString, first);
        QFETCH(QString, last);
        const Group &g = kGroups[size_t(group)];
        const AlarmTable table = g.build();
        QCOMPARE(g.kept(), table);
        QCOMPARE(AlarmCodes(g.group), table);
        QList<int> named;
        for (int bit = 0; bit < 32; ++bit) {
            if (!table[size_t(bit)].isEmpty())
                named << bit;
        }
        std::sort(bits.begin(), bits.end());
        QCOMPARE(named, bits);
        QCOMPARE(table[size_t(named.first())], first);
        QCOMPARE(table[size_t(named.last())], last);
    }

    // Some texts repeat on purpose; the repetitions must not be tidied away.
    void deliberateRepetitions()
    {
        const AlarmTable equipment = EquipmentAlarmCodes();
        QCOMPARE(equipment[2], QStringLiteral("6116|Upper Limit Switch"));
        QCOMPARE(equipment[3], QStringLiteral("6117|Upper Limit Switch"));

        const AlarmTable modified = CycleModifiedAlarmCodes();
        for (const size_t bit : {4, 6, 8, 9, 11, 12})
            QCOMPARE(modified[bit], QStringLiteral("6141|No Amplitude Step"));
        for (const size_t bit : {5, 7, 10, 13, 23})
            QCOMPARE(modified[bit], QStringLiteral("6142|No Force Step"));
        QCOMPARE(modified[16], QStringLiteral("6145|Amp B Not Reached"));
        QCOMPARE(modified[19], modified[16]);
        QCOMPARE(modified[17], QStringLiteral("6149|No Amp Reached"));

        const AlarmTable note = NoteAlarmCodes();
        QCOMPARE(note[1], QStringLiteral("6151|Act Clr Not Reached"));
        QCOMPARE(note[10], QStringLiteral("6160|Act Clr Not Reached"));
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
        QTest::newRow("highest") << std::numeric_limits<qint32>::max() << 0;
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

    void alarmsNamedByAWord_data()
    {
        QTest::addColumn<int>("group");
        QTest::addColumn<qint32>("word");
        QTest::addColumn<QStringList>("names");
        QTest::newRow("reject bit 0") << 0 << 0x1 << QStringList();
        QTest::newRow("reject bits 14 to 18")
            << 0 << (31 << 14) << QStringList{"6081|+R Time Limit", "6082|LL Not Reached"};
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
        QCOMPARE(namedAlarms(word, kGroups[size_t(group)].kept()), names);
    }

    // A caller may change the table it was given; the kept table stays as it was.
    void changingACopyLeavesTheKeptTable()
    {
        for (const Group &group : kGroups) {
            AlarmTable copy = AlarmCodes(group.group);
            const AlarmTable original = copy;
            copy.fill(QStringLiteral("changed"));
            QCOMPARE(group.kept(), original);
            QCOMPARE(AlarmCodes(group.group), original);
        }
    }

    void alarmWordOfEachGroup()
    {
        CorvaneFUN26 record;
        for (size_t g = 0; g < kGroups.size(); ++g)
            alarmWord(record, kGroups[g].group) = qint32(g + 1);
        const QList<qint32> words = {
            record.RejectPartAlarms, record.SuspectPartAlarms,      record.NoCycleAlarms,
            record.OverloadAlarms,   record.EquipmentFailureAlarms, record.CycleModifiedAlarms,
            record.NoteAlarms};
        QCOMPARE(words, QList<qint32>({1, 2, 3, 4, 5, 6, 7}));
        for (size_t g = 0; g < kGroups.size(); ++g)
            QCOMPARE(alarmWord(std::as_const(record), kGroups[g].group), qint32(g + 1));
    }
};

QTEST_GUILESS_MAIN(TestAlarmCodes)
#include "tst_alarmcodes.moc"

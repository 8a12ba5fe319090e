#include "ManualClock.h"
#include "RecordingErrorReport.h"
#include "SamplingDoubles.h"
#include "ScratchDatabase.h"

#include "platform/HeadlessMessageBoxes.h"
#include "platform/ProgramFiles.h"
#include "platform/qlxLanguage.h"
#include "protocol/CorvaneFUN26.h"
#include "sampling/DatabaseSupport.h"
#include "sampling/SamplingProperties.h"
#include "stats/DatasetCollection.h"

#include <QTemporaryDir>
#include <QTest>

#include <limits>

using namespace qlaDatabase6;

namespace {

using DatabaseMaker = std::function<std::unique_ptr<Database>()>;
const QDateTime kMidnight(QDate(2026, 3, 2), QTime(0, 0));

// One welder's sampling as its monitor drives it: three characteristics of which the
// rows show Weld Time and Energy, a clock moved by hand, and an SPC database holding
// the plant's parts, processes, tests and limits.
struct Line
{
    explicit Line(DatabaseMaker makeDatabase = {}, bool libraryLoads = true)
        : clock(kMidnight)
        , support(errors, ProgramFiles(folder.path()), [libraryLoads] { return libraryLoads; },
                  flag, {})
        , sampling(SamplingServices{errors, clock, support, boxes, folder.path(),
                                    std::move(makeDatabase), &selector})
    {
        addDataset(1, QStringLiteral("Weld Time"), true);
        addDataset(2, QStringLiteral("Energy"), true);
        addDataset(7, QStringLiteral("Peak Power"), false);
        sampling.setEnabled(true);
        sampling.setPart(QStringLiteral("Housing"));
        sampling.setProcess(QStringLiteral("Seal weld"));
        sampling.setSubgroupSize(5);
    }

    void addDataset(qint32 id, const QString &name, bool sampled)
    {
        auto dataset = std::make_unique<Dataset>(errors);
        dataset->ID = id;
        dataset->Name = name;
        dataset->SampleEnabled = sampled;
        datasets.Add(std::move(dataset), DatasetCollection::keyFor(id));
    }

    // Opens the database and fills it: "Housing" and "Seal weld" in the group "Line 3",
    // "Cover" in none, the tests Weld Time and Energy, limits for Housing's Energy.
    bool openPlant(const QString &dsn)
    {
        sampling.setDataSourceName(dsn);
        Database &database = sampling.database();
        if (!database.openConnection())
            return false;
        database.createRecord(RecordKind::Group, QStringLiteral("Line 3"));
        database.createRecord(RecordKind::Part, QStringLiteral("Housing"),
                              QStringLiteral("Line 3"));
        database.createRecord(RecordKind::Part, QStringLiteral("Cover"));
        database.createRecord(RecordKind::Process, QStringLiteral("Seal weld"),
                              QStringLiteral("Line 3"));
        const qint64 part =
            database.listRecords(RecordKind::Part, QStringLiteral("Housing"))[0].id();
        database.createRecord(RecordKind::Test, QStringLiteral("Weld Time"));
        const qint64 energy =
            database.createRecord(RecordKind::Test, QStringLiteral("Energy")).id();
        SpecLimit limit;
        limit.setPartId(part);
        limit.setTestId(energy);
        limit.setUpperSpecLimit(900);
        limit.setLowerSpecLimit(700);
        limit.setUpperWarningLimit(850);
        database.setSpecLimit(limit);
        return true;
    }

    // A weld whose characteristics are n, 100 + n and 50 + n.
    void weld(int n, qint32 rejectAlarms = 0, qint32 noteAlarms = 0)
    {
        datasets.at(0).AddValue(n);
        datasets.at(1).AddValue(100 + n);
        datasets.at(2).AddValue(50 + n);
        CorvaneFUN26 record;
        record.RejectPartAlarms = rejectAlarms;
        record.NoteAlarms = noteAlarms;
        sampling.AddToSample(language, record);
    }

    void tick() { sampling.ProcessSamplePeriod(language, datasets); }
    // The clock moves on and the sampling timer ticks once.
    void tickAfter(qint64 seconds)
    {
        clock.advanceSeconds(seconds);
        tick();
    }
    QList<StoredValue> stored() { return sampling.database().subgroupValues({}); }

    QTemporaryDir folder;
    ManualClock clock;
    RecordingErrorReport errors;
    RecordingMessageBoxes boxes;
    ScriptedPartSelector selector;
    DatabaseSupport::LibraryFlag flag;
    DatabaseSupport support;
    qlxLanguage language;
    DatasetCollection datasets;
    SamplingProperties sampling;
};

QList<qint64> subgroupIds(const QList<StoredValue> &rows)
{
    QList<qint64> ids;
    for (const StoredValue &row : rows) {
        if (!ids.contains(row.subgroupId))
            ids.append(row.subgroupId);
    }
    return ids;
}

QStringList itemNames(const QList<StoredValue> &rows, qint64 subgroup)
{
    QStringList names;
    for (const StoredValue &row : rows) {
        if (row.subgroupId == subgroup && !names.contains(row.testItem))
            names.append(row.testItem);
    }
    return names;
}

// The values of one item, by sample number, with their texts.
QList<std::pair<double, QString>> itemValues(const QList<StoredValue> &rows, qint64 subgroup,
                                             const QString &item)
{
    QList<std::pair<double, QString>> values;
    for (const StoredValue &row : rows) {
        if (row.subgroupId == subgroup && row.testItem == item) {
            if (row.sampleNumber != values.size() + 1)
                return {};
            values.append({row.value, row.text});
        }
    }
    return values;
}

QList<std::pair<double, QString>> measured(std::initializer_list<double> values)
{
    QList<std::pair<double, QString>> list;
    for (const double value : values)
        list.append({value, QString()});
    return list;
}

QString errorsText(const RecordingErrorReport &errors)
{
    QStringList lines;
    for (const RecordingErrorReport::Report &report : errors.reports)
        lines << report.location + u' ' + report.description;
    return lines.join(u'\n');
}

#define OPEN_PLANT(line)                                                                           \
    SCRATCH_DATABASE(scratch);                                                                     \
    Line line;                                                                                     \
    QVERIFY2(line.openPlant(scratch.dsn()), qPrintable(line.sampling.database().lastErrorText()))

// The plant's database in a SQLite file, for the cases that need no server.
#define SQLITE_PLANT(line)                                                                         \
    ScratchDatabase scratch(QStringLiteral("sqlite"));                                             \
    Line line;                                                                                     \
    QVERIFY(line.openPlant(scratch.dsn()))

} // namespace

// Sampling periods of a running monitor and the subgroups they leave in a real SPC
// database: the schedule, the values kept, the alarm items, the refusals to start, the
// groups and limits looked up, and what happens when the database fails or is missing.
class TestSampleCollection : public QObject
{
    Q_OBJECT

private slots:
    void periodsOfADayDoNotDrift()
    {
        SQLITE_PLANT(line);
        QVERIFY(line.sampling.StartCollection(line.language));
        QCOMPARE(line.sampling.PeriodStart(), kMidnight);
        QCOMPARE(line.sampling.NextSampleTime(), kMidnight.addSecs(300));
        // The timer comes late by up to 6 s at every period's end; a weld in each period.
        while (line.clock.now() < kMidnight.addDays(1)) {
            if (line.sampling.subgroupRecord().WeldCount == 0)
                line.weld(1);
            line.tickAfter(7);
        }
        QCOMPARE(line.sampling.PeriodStart(), kMidnight.addDays(1));
        QCOMPARE(line.sampling.NextSampleTime(), kMidnight.addDays(1).addSecs(300));
        const QList<StoredValue> rows = line.stored();
        const QList<qint64> ids = subgroupIds(rows);
        QCOMPARE(ids.size(), 288);
        int period = 0;
        for (const StoredValue &row : rows) {
            if (row.testItem == QLatin1String("Data Rate")) {
                QCOMPARE(row.header.dateTime, kMidnight.addSecs(300 * ++period));
                QCOMPARE(row.value, 0.2); // one weld in five minutes
            }
        }
        QCOMPARE(period, 288);
        QVERIFY2(line.errors.isEmpty(), qPrintable(errorsText(line.errors)));
    }

    void subgroupKeepsTheNewestValues_data()
    {
        QTest::addColumn<QString>("backend");
        QTest::addColumn<int>("welds");
        QTest::addColumn<int>("collectionType");
        QTest::addColumn<QString>("part");
        QTest::addColumn<QString>("partGroup");
        QTest::newRow("3 welds, size 5") << "sqlite" << 3 << 0 << "Housing"
                                         << "Line 3";
        QTest::newRow("8 welds, size 5") << "sqlite" << 8 << 0 << "Housing"
                                         << "Line 3";
        QTest::newRow("every characteristic, part in no group") << "sqlite" << 8 << 1 << "Cover"
                                                                << "Corvane";
        QTest::newRow("server, 8 welds") << "postgresql" << 8 << 0 << "Housing"
                                         << "Line 3";
        QTest::newRow("server, unknown part") << "postgresql" << 3 << 1 << "Ghost"
                                              << "Corvane";
    }
    void subgroupKeepsTheNewestValues()
    {
        QFETCH(int, welds);
        QFETCH(int, collectionType);
        QFETCH(QString, part);
        QFETCH(QString, partGroup);
        OPEN_PLANT(line);
        line.sampling.setCollectionType(collectionType);
        line.sampling.setPart(QStringLiteral(" %1 ").arg(part));
        line.weld(-1); // before the start: belongs to no period
        QVERIFY(line.sampling.StartCollection(line.language));
        for (int n = 1; n <= welds; ++n)
            line.weld(n);
        line.tickAfter(300);

        const QList<StoredValue> rows = line.stored();
        QCOMPARE(subgroupIds(rows).size(), 1);
        const qint64 id = rows.first().subgroupId;
        const SubgroupHeader &header = rows.first().header;
        QCOMPARE(header.valueCount, welds);
        QCOMPARE(header.dateTime, kMidnight.addSecs(300));
        QCOMPARE(header.part, part);
        QCOMPARE(header.partGroup, partGroup);
        QCOMPARE(header.process, QStringLiteral("Seal weld"));
        QCOMPARE(header.processGroup, QStringLiteral("Line 3"));
        QCOMPARE(header.sourceTag, QStringLiteral("Corvane"));
        QStringList expectedItems = {QStringLiteral("Weld Time"), QStringLiteral("Energy")};
        if (collectionType == 1)
            expectedItems << QStringLiteral("Peak Power");
        QCOMPARE(itemNames(rows, id), expectedItems << QStringLiteral("Data Rate"));
        const auto newest = [&](double offset) {
            QList<std::pair<double, QString>> values;
            for (int n = welds; n > welds - 5 && n > 0; --n)
                values.append({offset + n, QString()});
            return values;
        };
        QCOMPARE(itemValues(rows, id, QStringLiteral("Weld Time")), newest(0));
        QCOMPARE(itemValues(rows, id, QStringLiteral("Energy")), newest(100));
        if (collectionType == 1)
            QCOMPARE(itemValues(rows, id, QStringLiteral("Peak Power")), newest(50));
        QCOMPARE(itemValues(rows, id, QStringLiteral("Data Rate")), measured({welds / 5.0}));
        QCOMPARE(line.sampling.subgroupRecord().WeldCount, 0);
        QVERIFY2(line.errors.isEmpty(), qPrintable(errorsText(line.errors)));
    }

    void quietPeriodsSaveNothingAndOneOverduePeriodClosesPerTick()
    {
        SQLITE_PLANT(line);
        QVERIFY(line.sampling.StartCollection(line.language));
        line.tickAfter(299);
        QCOMPARE(line.sampling.NextSampleTime(), kMidnight.addSecs(300));
        line.tickAfter(1);
        QCOMPARE(line.sampling.NextSampleTime(), kMidnight.addSecs(600));
        QVERIFY(line.stored().isEmpty());

        // A weld, then the timer stands still for three periods.
        line.weld(4);
        line.clock.advanceSeconds(3 * 300);
        for (int tick = 1; tick <= 3; ++tick) {
            line.tick();
            QCOMPARE(line.sampling.NextSampleTime(), kMidnight.addSecs(600 + 300 * tick));
        }
        line.tick();
        QCOMPARE(line.sampling.NextSampleTime(), kMidnight.addSecs(1500));
        const QList<StoredValue> rows = line.stored();
        QCOMPARE(subgroupIds(rows).size(), 1);
        QCOMPARE(rows.first().header.dateTime, kMidnight.addSecs(600));
    }

    void alarmItems_data()
    {
        QTest::addColumn<bool>("logging");
        QTest::addColumn<int>("logAlarms");
        QTest::addColumn<QStringList>("items");
        const QStringList all = {"Cycle Modified Alarms", "Equipment Failure Alarms",
                                 "No Cycle Alarms",       "Note Alarms",
                                 "Overload Alarms",       "Ausschuss",
                                 "Suspect Part Alarms"};
        QTest::newRow("every group") << true << 127 << all;
        QTest::newRow("reject and cycle modified")
            << true << (1 | 32) << QStringList{all[0], all[5]};
        QTest::newRow("no group chosen") << true << 0 << QStringList();
        QTest::newRow("logging off") << false << 127 << QStringList();
    }
    void alarmItems()
    {
        QFETCH(bool, logging);
        QFETCH(int, logAlarms);
        QFETCH(QStringList, items);
        SQLITE_PLANT(line);
        line.language.setText(6462, QStringLiteral("Ausschuss"));
        line.language.setText(6070, QStringLiteral("-R Spitzenleistung"));
        line.sampling.setEnableAlarmLogging(logging);
        line.sampling.setLogAlarms(logAlarms);
        QVERIFY(line.sampling.StartCollection(line.language));
        // Reject Part bits 1 and 3 in ten welds, bit 0 (no alarm of its own) too, and
        // one Note alarm.
        for (int n = 1; n <= 10; ++n)
            line.weld(n, 0b1011, n == 4 ? 0b100 : 0);
        line.sampling.StopCollection(line.language, line.datasets);
        QVERIFY(!line.sampling.Collecting());

        const QList<StoredValue> rows = line.stored();
        const qint64 id = rows.first().subgroupId;
        QCOMPARE(itemNames(rows, id).mid(3), items);
        for (const StoredValue &row : rows) {
            if (row.testItem == QLatin1String("Ausschuss")) {
                QCOMPARE(row.kind, TestItem::kAlarmList);
                QCOMPARE(itemValues(rows, id, row.testItem),
                         (QList<std::pair<double, QString>>{{1.0, "-R Energy Limit"},
                                                            {1.0, "-R Spitzenleistung"}}));
            } else if (row.testItem == QLatin1String("Note Alarms")) {
                QCOMPARE(itemValues(rows, id, row.testItem).size(), 1);
                QCOMPARE(itemValues(rows, id, row.testItem).first().first, 1.0);
                QVERIFY(!itemValues(rows, id, row.testItem).first().second.isEmpty());
            } else if (row.kind == TestItem::kAlarmList) {
                QCOMPARE(itemValues(rows, id, row.testItem), measured({0.0}));
            }
        }
        // A new period starts with no alarms.
        QCOMPARE(line.sampling.subgroupRecord().counters(AlarmGroup::RejectPart)[1], 0);
    }

    void startRefusals_data()
    {
        QTest::addColumn<bool>("reachable");
        QTest::addColumn<QString>("part");
        QTest::addColumn<QString>("process");
        QTest::addColumn<QString>("message");
        QTest::newRow("no connection") << false << "Housing"
                                       << "Seal weld"
                                       << "Unable To Connect";
        QTest::newRow("no part") << true << "  "
                                 << "Seal weld"
                                 << "NO PART! A part must be selected before continuing.";
        QTest::newRow("no process") << true << "Housing"
                                    << ""
                                    << "NO PROCESS! A process must be selected before continuing.";
    }
    void startRefusals()
    {
        QFETCH(bool, reachable);
        QFETCH(QString, part);
        QFETCH(QString, process);
        QFETCH(QString, message);
        Line line;
        const QString dsn = reachable ? line.folder.filePath(QStringLiteral("spc.db"))
                                      : QStringLiteral("/nonexistent-corvane/spc.db");
        line.sampling.setDataSourceName(dsn);
        line.sampling.setPart(part);
        line.sampling.setProcess(process);
        QVERIFY(!line.sampling.StartCollection(line.language));
        QVERIFY(!line.sampling.Collecting());
        QCOMPARE(line.boxes.messages.size(), 1);
        QCOMPARE(line.boxes.messages.first().title, QStringLiteral("SPC Sampling"));
        QCOMPARE(line.boxes.messages.first().text, message + QStringLiteral("\r\n\r\n") + dsn);
        QVERIFY2(line.errors.isEmpty(), qPrintable(errorsText(line.errors)));
        line.weld(1);
        QCOMPARE(line.sampling.subgroupRecord().WeldCount, 0);

        // Without a window the refusal is one line of the error report.
        RecordingErrorReport report;
        HeadlessMessageBoxes headless(report, nullptr);
        headless.critical(line.boxes.messages.first().title, line.boxes.messages.first().text);
        QCOMPARE(report.last().location, QStringLiteral("SPC Sampling"));
        QCOMPARE(report.last().description, message + QStringLiteral(" / ") + dsn);
    }

    void limitsFillTheDatasets_data() { addBackendRows(); }
    void limitsFillTheDatasets()
    {
        OPEN_PLANT(line);
        const auto limitsOf = [&](int position) {
            const Dataset &d = line.datasets.at(position);
            return QList<double>{double(d.LimitFlags), d.UpperSpecLimit, d.LowerSpecLimit,
                                 d.UpperWarningLimit, d.LowerWarningLimit};
        };
        const auto preset = [&] {
            for (const std::unique_ptr<Dataset> &dataset : line.datasets) {
                dataset->LimitFlags = Dataset::kUpperSpecLimit;
                dataset->UpperSpecLimit = 99;
                dataset->LowerSpecLimit = 0;
                dataset->UpperWarningLimit = 0;
                dataset->LowerWarningLimit = 0;
            }
        };
        const QList<double> untouched = {2, 99, 0, 0, 0};

        preset();
        line.sampling.InitializeSpecificationLimits(line.datasets);
        QCOMPARE(limitsOf(0), (QList<double>{0, 0, 0, 0, 0})); // a test without limits
        QCOMPARE(limitsOf(1), (QList<double>{2 | 4 | 32, 900, 700, 850, 0}));
        QCOMPARE(limitsOf(2), untouched); // no such test in the database

        for (const QString &part : {QStringLiteral("Ghost"), QStringLiteral("Cover")}) {
            preset();
            line.sampling.setPart(part);
            line.sampling.InitializeSpecificationLimits(line.datasets);
            const QList<double> none = {0, 0, 0, 0, 0};
            QCOMPARE(limitsOf(1), part == QLatin1String("Ghost") ? untouched : none);
        }
        preset();
        line.sampling.setPart(QStringLiteral("Housing"));
        line.sampling.setEnabled(false);
        line.sampling.InitializeSpecificationLimits(line.datasets);
        QCOMPARE(limitsOf(1), untouched);
        QVERIFY2(line.errors.isEmpty(), qPrintable(errorsText(line.errors)));
    }

    void failedWriteStoresNothing_data() { addBackendRows(); }
    void failedWriteStoresNothing()
    {
        OPEN_PLANT(line);
        RawConnection raw(scratch.dsn());
        QVERIFY2(raw.isOpen(), qPrintable(raw.errorText()));
        // The weld rate is written after the characteristics' values: the write fails
        // halfway through the subgroup.
        const bool server = raw.dialect() == Dialect::PostgreSQL;
        const QStringList refuse =
            server ? QStringList{"CREATE FUNCTION refuse_rate() RETURNS trigger AS $$ BEGIN IF "
                                 "NEW.name = 'Data Rate' THEN RAISE EXCEPTION 'disk gone'; END "
                                 "IF; RETURN NEW; END $$ LANGUAGE plpgsql",
                                 "CREATE TRIGGER refuse_rate BEFORE INSERT ON test_items FOR "
                                 "EACH ROW EXECUTE FUNCTION refuse_rate()"}
                   : QStringList{"CREATE TRIGGER refuse_rate BEFORE INSERT ON test_items WHEN "
                                 "NEW.name = 'Data Rate' BEGIN SELECT RAISE(ABORT, 'disk gone'); "
                                 "END"};
        for (const QString &statement : refuse)
            QVERIFY2(raw.exec(statement), qPrintable(raw.errorText()));

        QVERIFY(line.sampling.StartCollection(line.language));
        for (int n = 1; n <= 3; ++n)
            line.weld(n);
        line.tickAfter(300);
        QCOMPARE(line.errors.count(), 1);
        QCOMPARE(line.errors.last().location, QStringLiteral("SamplingProperties.SaveSubgroup"));
        QVERIFY2(line.errors.last().description.contains(QLatin1String("disk gone")),
                 qPrintable(line.errors.last().description));
        for (const char *table : {"subgroups", "test_items", "sample_values"})
            QCOMPARE(raw.count(QLatin1String(table)), 0);
        QVERIFY(line.sampling.Collecting());

        QVERIFY(raw.exec(QStringLiteral("DROP TRIGGER refuse_rate") +
                         (server ? QStringLiteral(" ON test_items") : QString())));
        line.weld(4);
        line.weld(5);
        line.tickAfter(300);
        const QList<StoredValue> rows = line.stored();
        QCOMPARE(subgroupIds(rows).size(), 1);
        QCOMPARE(rows.first().header.valueCount, 2);
        QCOMPARE(rows.first().header.dateTime, kMidnight.addSecs(600));
        QCOMPARE(line.errors.count(), 1);
    }

    void stopSavesThePartialPeriod()
    {
        SQLITE_PLANT(line);
        QVERIFY(line.sampling.StartCollection(line.language));
        line.weld(1);
        line.weld(2);
        line.clock.advanceSeconds(100);
        line.sampling.StopCollection(line.language, line.datasets);
        QVERIFY(!line.sampling.Collecting());
        line.weld(3);
        line.tickAfter(300);
        line.sampling.StopCollection(line.language, line.datasets);
        QList<StoredValue> rows = line.stored();
        QCOMPARE(subgroupIds(rows).size(), 1);
        QCOMPARE(rows.first().header.valueCount, 2);
        QCOMPARE(rows.first().header.dateTime, kMidnight.addSecs(300));
        QCOMPARE(itemValues(rows, rows.first().subgroupId, QStringLiteral("Weld Time")),
                 measured({2, 1}));

        // A period of no length has no weld rate; the rest of its subgroup is saved.
        line.sampling.setSamplingPeriod(0);
        QVERIFY(line.sampling.StartCollection(line.language));
        line.weld(7);
        line.tick();
        QCOMPARE(line.errors.count(), 1);
        QCOMPARE(line.errors.last().location, QStringLiteral("SamplingProperties.SaveDataRate"));
        QCOMPARE(line.errors.last().number, ProgramError::kDivisionByZero);
        rows = line.stored();
        QCOMPARE(subgroupIds(rows).size(), 2);
        QCOMPARE(itemNames(rows, rows.last().subgroupId),
                 (QStringList{QStringLiteral("Weld Time"), QStringLiteral("Energy")}));
    }

    void withoutTheLibraryNothingTouchesTheDatabase()
    {
        auto owned = std::make_unique<CountingDatabase>();
        CountingDatabase &database = *owned;
        Line line([&] { return std::move(owned); }, false);
        line.sampling.setAllowPartReselect(true);
        QDomDocument document;
        document.setContent(
            QStringLiteral("<Configuration><Sampling Enabled=\"True\"/></Configuration>"));
        line.sampling.SetXMLNode(document.documentElement());
        QVERIFY(line.sampling.StartCollection(line.language)); // the monitor runs without
        QVERIFY(!line.sampling.Collecting());
        line.weld(1);
        line.tickAfter(600);
        line.sampling.StopCollection(line.language, line.datasets);
        line.sampling.InitializeSpecificationLimits(line.datasets);
        QVERIFY(!line.sampling.SelectPart(nullptr));
        QCOMPARE(database.calls, 0);
        QVERIFY(line.boxes.messages.isEmpty());
        QVERIFY(line.errors.isEmpty());
        QVERIFY(line.selector.preselected.isEmpty());
    }

    void selectPart()
    {
        SQLITE_PLANT(line);
        QVERIFY(!line.sampling.SelectPart(nullptr)); // reselection not allowed
        QCOMPARE(line.boxes.beeps, 1);
        line.sampling.setAllowPartReselect(true);
        QVERIFY(line.sampling.StartCollection(line.language));
        QVERIFY(!line.sampling.SelectPart(nullptr)); // collecting
        QCOMPARE(line.boxes.beeps, 2);
        line.sampling.StopCollection(line.language, line.datasets);
        QVERIFY(line.selector.preselected.isEmpty());

        line.selector.answer = std::nullopt; // cancelled
        QVERIFY(!line.sampling.SelectPart(nullptr));
        line.selector.answer = QStringLiteral("HOUSING");
        QVERIFY(!line.sampling.SelectPart(nullptr));
        QCOMPARE(line.sampling.Part(), QStringLiteral("Housing"));
        line.selector.answer = QStringLiteral("Cover");
        QVERIFY(line.sampling.SelectPart(nullptr));
        QCOMPARE(line.sampling.Part(), QStringLiteral("Cover"));
        QCOMPARE(line.selector.preselected, QStringList({"Housing", "Housing", "Housing"}));
        QVERIFY(line.selector.preselectedIds.first() > 0);
        QCOMPARE(line.boxes.beeps, 2);
    }

    void countersOverflowInsteadOfWrapping()
    {
        SubgroupRecord record;
        CorvaneFUN26 weld;
        weld.NoteAlarms = qint32(0x80000000u);
        record.AccumulateErrorCodes(weld);
        QCOMPARE(record.counters(AlarmGroup::Note)[31], 1);
        record.counters(AlarmGroup::Note)[31] = std::numeric_limits<qint32>::max();
        QVERIFY_THROWS_EXCEPTION(ProgramError, record.AccumulateErrorCodes(weld));
        record.WeldCount = std::numeric_limits<qint32>::max();
        try {
            record.addWeld();
            QFAIL("no overflow");
        } catch (const ProgramError &error) {
            QCOMPARE(error.number(), ProgramError::kOverflow);
        }
        record.clear();
        QCOMPARE(record.WeldCount, 0);
        QCOMPARE(record.counters(AlarmGroup::Note)[31], 0);
    }
};

QTEST_GUILESS_MAIN(TestSampleCollection)
#include "tst_samplecollection.moc"

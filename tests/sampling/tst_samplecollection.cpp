#include "SamplingDoubles.h"
#include "ScratchDatabase.h"
#include "TestSuites.h"

#include "platform/HeadlessMessageBoxes.h"
#include "platform/qlxLanguage.h"
#include "protocol/CorvaneFUN26.h"
#include "stats/DatasetCollection.h"

#include <QFile>
#include <QTest>

#include <limits>

using namespace qlaDatabase6;

namespace {

const QDateTime kMidnight(QDate(2026, 3, 2), QTime(0, 0));

// One welder's sampling as its monitor drives it: three characteristics of which the
// rows show Weld Time and Energy, and an SPC database holding the plant.
struct Line : SamplingBench
{
    explicit Line(DatabaseMaker makeDatabase = {},
                  DatabaseSupport::DriverCheck driverCheck = &DatabaseSupport::sqlDriversLoad)
        : SamplingBench(std::move(makeDatabase), std::move(driverCheck))
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

    qlxLanguage language;
    DatasetCollection datasets;
};

// Each stored subgroup's number of welds and the end of its period.
using Periods = QList<std::pair<qint32, QDateTime>>;
Periods periods(const QList<StoredValue> &rows)
{
    Periods periods;
    for (qsizetype i = 0; i < rows.size(); ++i) {
        if (i == 0 || rows[i].subgroupId != rows[i - 1].subgroupId)
            periods.append({rows[i].header.valueCount, rows[i].header.dateTime});
    }
    return periods;
}

using Values = QList<std::pair<double, QString>>;

// The items of one subgroup in their order, each with its values by sample number.
QList<std::pair<QString, Values>> items(const QList<StoredValue> &rows, qint64 subgroup)
{
    QList<std::pair<QString, Values>> items;
    for (const StoredValue &row : rows) {
        if (row.subgroupId != subgroup)
            continue;
        if (items.isEmpty() || items.last().first != row.testItem)
            items.append({row.testItem, {}});
        Values &values = items.last().second;
        if (row.sampleNumber != values.size() + 1)
            return {};
        values.append({row.value, row.text});
    }
    return items;
}

QStringList itemNames(const QList<StoredValue> &rows, qint64 subgroup)
{
    QStringList names;
    for (const auto &item : items(rows, subgroup))
        names.append(item.first);
    return names;
}

Values measured(std::initializer_list<double> values)
{
    Values list;
    for (const double value : values)
        list.append({value, QString()});
    return list;
}

// No error report, or the reports as the failure's message.
#define QVERIFY_NO_ERRORS(errors)                                                                  \
    do {                                                                                           \
        QStringList lines;                                                                         \
        for (const RecordingErrorReport::Report &report : (errors).reports)                        \
            lines << report.location + u' ' + report.description;                                  \
        QVERIFY2(lines.isEmpty(), qPrintable(lines.join(u'\n')));                                  \
    } while (false)

// The line's database on the given backend, filled with the plant.
#define PLANT_ON(line, backend)                                                                    \
    SCRATCH_DATABASE_ON(scratch, backend);                                                         \
    Line line;                                                                                     \
    line.sampling.setDataSourceName(scratch.dsn());                                                \
    QVERIFY2(line.sampling.database().openConnection(),                                            \
             qPrintable(line.sampling.database().lastErrorText()));                                \
    fillPlant(line.sampling.database())

// The plant on the data row's backend, or in a SQLite file for the cases that need no server.
#define OPEN_PLANT(line)                                                                           \
    QFETCH(QString, backend);                                                                      \
    PLANT_ON(line, backend)
#define SQLITE_PLANT(line) PLANT_ON(line, QStringLiteral("sqlite"))

} // namespace

// Sampling periods of a running monitor and the subgroups they leave in a real SPC
// database: the schedule, the values kept, the alarm items, the refusals to start, the
// groups and limits looked up, and what happens when the database fails or is missing.
class TestSampleCollection : public QObject
{
    Q_OBJECT

private slots:
    void periodsDoNotDrift()
    {
        SQLITE_PLANT(line);
        QVERIFY(line.sampling.StartCollection(line.language));
        QCOMPARE(line.sampling.PeriodStart(), kMidnight);
        QCOMPARE(line.sampling.NextSampleTime(), kMidnight.addSecs(300));
        // The timer comes late by up to 6 s at every period's end; a weld in each period.
        const QDateTime end = kMidnight.addSecs(4 * 3600);
        while (line.clock.now() < end) {
            if (line.sampling.subgroupRecord().WeldCount == 0)
                line.weld(1);
            line.tickAfter(7);
        }
        QCOMPARE(line.sampling.PeriodStart(), end);
        QCOMPARE(line.sampling.NextSampleTime(), end.addSecs(300));
        const QList<StoredValue> rows = line.stored();
        QCOMPARE(periods(rows).size(), 48);
        int period = 0;
        for (const StoredValue &row : rows) {
            if (row.testItem == QLatin1String("Data Rate")) {
                QCOMPARE(row.header.dateTime, kMidnight.addSecs(300 * ++period));
                QCOMPARE(row.value, 0.2); // one weld in five minutes
            }
        }
        QCOMPARE(period, 48);
        QVERIFY_NO_ERRORS(line.errors);
    }

    void subgroupKeepsTheNewestValues_data()
    {
        QTest::addColumn<QString>("backend");
        QTest::addColumn<int>("welds");
        QTest::addColumn<int>("collectionType");
        QTest::addColumn<QString>("part");
        QTest::newRow("3 welds, size 5") << "sqlite" << 3 << 0 << "Housing";
        QTest::newRow("8 welds, size 5") << "sqlite" << 8 << 0 << "Housing";
        QTest::newRow("every characteristic, part in no group") << "sqlite" << 8 << 1 << "Cover";
        QTest::newRow("server, 8 welds") << "postgresql" << 8 << 0 << "Housing";
        QTest::newRow("server, unknown part") << "postgresql" << 3 << 1 << "Ghost";
    }
    void subgroupKeepsTheNewestValues()
    {
        QFETCH(int, welds);
        QFETCH(int, collectionType);
        QFETCH(QString, part);
        // Only Housing is in a group of the plant's; the others fall back to "Corvane".
        const QString partGroup = part == QLatin1String("Housing") ? "Line 3" : "Corvane";
        OPEN_PLANT(line);
        line.sampling.setCollectionType(collectionType);
        line.sampling.setPart(QStringLiteral(" %1 ").arg(part));
        line.weld(-1); // before the start: belongs to no period
        QVERIFY(line.sampling.StartCollection(line.language));
        for (int n = 1; n <= welds; ++n)
            line.weld(n);
        line.tickAfter(300);

        const QList<StoredValue> rows = line.stored();
        QCOMPARE(periods(rows), (Periods{{welds, kMidnight.addSecs(300)}}));
        const SubgroupHeader &header = rows.first().header;
        QCOMPARE((QStringList{header.part, header.partGroup, header.process, header.processGroup,
                              header.sourceTag}),
                 (QStringList{part, partGroup, "Seal weld", "Line 3", "Corvane"}));
        const auto newest = [&](double offset) {
            Values values;
            for (int n = welds; n > welds - 5 && n > 0; --n)
                values.append({offset + n, QString()});
            return values;
        };
        QList<std::pair<QString, Values>> expected = {{"Weld Time", newest(0)},
                                                      {"Energy", newest(100)}};
        if (collectionType == 1)
            expected.append({"Peak Power", newest(50)});
        expected.append({"Data Rate", measured({welds / 5.0})});
        QCOMPARE(items(rows, rows.first().subgroupId), expected);
        QCOMPARE(line.sampling.subgroupRecord().WeldCount, 0);
        QVERIFY_NO_ERRORS(line.errors);
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
        QCOMPARE(periods(line.stored()), (Periods{{1, kMidnight.addSecs(600)}}));
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
        const QStringList names = itemNames(rows, id);
        QCOMPARE(names.mid(3), items);
        for (const StoredValue &row : rows) {
            QCOMPARE(row.kind == TestItem::kAlarmList, items.contains(row.testItem));
            if (row.kind != TestItem::kAlarmList)
                continue;
            const Values values = ::items(rows, id).at(names.indexOf(row.testItem)).second;
            if (row.testItem == QLatin1String("Ausschuss")) {
                QCOMPARE(values, (Values{{1.0, "-R Energy Limit"}, {1.0, "-R Spitzenleistung"}}));
            } else if (row.testItem == QLatin1String("Note Alarms")) {
                QCOMPARE(values.size(), 1);
                QCOMPARE(values.first().first, 1.0);
                QVERIFY(!values.first().second.isEmpty());
            } else {
                QCOMPARE(values, measured({0.0}));
            }
        }
        // A new period starts with no alarms.
        QCOMPARE(line.sampling.subgroupRecord().counters(AlarmGroup::RejectPart)[1], 0);
    }

    void startRefusals_data()
    {
        QTest::addColumn<bool>("reachable");
        QTest::addColumn<QString>("part");
        QTest::addColumn<bool>("withProcess");
        QTest::addColumn<QString>("message");
        QTest::newRow("no connection") << false << "Housing" << true << "Unable To Connect";
        QTest::newRow("no part") << true << "  " << true
                                 << "NO PART! A part must be selected before continuing.";
        QTest::newRow("no process") << true << "Housing" << false
                                    << "NO PROCESS! A process must be selected before continuing.";
    }
    void startRefusals()
    {
        QFETCH(bool, reachable);
        QFETCH(QString, part);
        QFETCH(bool, withProcess);
        QFETCH(QString, message);
        Line line;
        const QString dsn = reachable ? line.folder.filePath(QStringLiteral("spc.db"))
                                      : QStringLiteral("/nonexistent-corvane/spc.db");
        line.sampling.setDataSourceName(dsn);
        line.sampling.setPart(part);
        line.sampling.setProcess(withProcess ? QStringLiteral("Seal weld") : QString());
        QVERIFY(!line.sampling.StartCollection(line.language));
        QVERIFY(!line.sampling.Collecting());
        QCOMPARE(line.boxes.messages.size(), 1);
        QCOMPARE(line.boxes.messages.first().title, QStringLiteral("SPC Sampling"));
        QCOMPARE(line.boxes.messages.first().text, message + QStringLiteral("\r\n\r\n") + dsn);
        QVERIFY_NO_ERRORS(line.errors);
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
        using Limits = QList<double>; // flag word, USL, LSL, UWL, LWL
        const Limits untouched = {Dataset::kUpperSpecLimit, 99, 0, 0, 0}, none = {0, 0, 0, 0, 0};
        const Limits housingEnergy = {2 | 4 | 32, 900, 700, 850, 0};
        // Weld Time has no limits, Peak Power is no test of the database, an unknown part
        // and switched-off sampling leave every dataset as it was.
        const QList<std::tuple<QString, bool, QList<Limits>>> cases = {
            {"Housing", true, {none, housingEnergy, untouched}},
            {"Cover", true, {none, none, untouched}},
            {"Ghost", true, {untouched, untouched, untouched}},
            {"Housing", false, {untouched, untouched, untouched}}};
        for (const auto &[part, enabled, expected] : cases) {
            QList<Limits> found;
            for (const std::unique_ptr<Dataset> &d : line.datasets) {
                d->LimitFlags = Dataset::kUpperSpecLimit;
                d->UpperSpecLimit = 99;
                d->LowerSpecLimit = d->UpperWarningLimit = d->LowerWarningLimit = 0;
            }
            line.sampling.setPart(part);
            line.sampling.setEnabled(enabled);
            line.sampling.InitializeSpecificationLimits(line.datasets);
            for (const std::unique_ptr<Dataset> &d : line.datasets) {
                found.append({double(d->LimitFlags), d->UpperSpecLimit, d->LowerSpecLimit,
                              d->UpperWarningLimit, d->LowerWarningLimit});
            }
            QVERIFY2(found == expected, qPrintable(part));
        }
        QVERIFY_NO_ERRORS(line.errors);
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
        QCOMPARE(periods(line.stored()), (Periods{{2, kMidnight.addSecs(600)}}));
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
        QCOMPARE(periods(rows), (Periods{{2, kMidnight.addSecs(300)}}));
        QCOMPARE(items(rows, rows.first().subgroupId).first().second, measured({2, 1}));

        // A period of no length has no weld rate; the rest of its subgroup is saved.
        line.sampling.setSamplingPeriod(0);
        QVERIFY(line.sampling.StartCollection(line.language));
        line.weld(7);
        line.tick();
        QCOMPARE(line.errors.count(), 1);
        QCOMPARE(line.errors.last().location, QStringLiteral("SamplingProperties.SaveDataRate"));
        QCOMPARE(line.errors.last().number, ProgramError::kDivisionByZero);
        rows = line.stored();
        QCOMPARE(periods(rows).size(), 2);
        QCOMPARE(itemNames(rows, rows.last().subgroupId),
                 (QStringList{QStringLiteral("Weld Time"), QStringLiteral("Energy")}));
    }

    void withoutTheLibraryNothingTouchesTheDatabase()
    {
        Line line({}, [] { return false; });
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
        // Never opened: the database file was not even made.
        QVERIFY(!QFile::exists(line.sampling.DataSourceName()));
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

CORVANE_TEST_SUITE(TestSampleCollection)
#include "tst_samplecollection.moc"

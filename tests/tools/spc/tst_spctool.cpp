#include "ScratchDatabase.h"

#include "platform/spc/Schema.h"
#include "platform/spc/SqlDatabase.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace qlaDatabase6;

namespace {

struct ToolRun
{
    int exitCode = -1;
    QString out;
    QString err;
};

ToolRun runTool(const QStringList &arguments, const QString &dataFolder)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("CORVANE_DATA_DIR"), dataFolder);
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(CORVANE_SPC_TOOL), arguments);
    ToolRun run;
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return run;
    run.exitCode = process.exitCode();
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

// Reads comma-separated values the way a spreadsheet does: quoted fields may hold
// commas, line breaks and doubled quotes, and every row ends in CR LF. Returns false on
// text that breaks the rules.
bool parseCsv(const QString &text, QList<QStringList> &rows)
{
    static const QRegularExpression field(QStringLiteral(R"(("(?:[^"]|"")*"|[^",\r\n]*)(,|\r\n))"));
    QStringList row;
    for (qsizetype at = 0; at < text.size();) {
        const QRegularExpressionMatch match =
            field.match(text, at, QRegularExpression::NormalMatch,
                        QRegularExpression::AnchorAtOffsetMatchOption);
        if (!match.hasMatch())
            return false;
        QString value = match.captured(1);
        if (value.startsWith(u'"'))
            value = value.mid(1, value.size() - 2)
                        .replace(QStringLiteral("\"\""), QStringLiteral("\""));
        row.append(value);
        if (match.captured(2) != QLatin1String(",")) {
            rows.append(row);
            row.clear();
        }
        at = match.capturedEnd();
    }
    return row.isEmpty();
}

Subgroup storedSubgroup(const QString &part, const QDateTime &time)
{
    Subgroup subgroup;
    subgroup.setHeader({true, 2, time, QStringLiteral("Line 3, east"), part,
                        QStringLiteral("Corvane"), QStringLiteral("Seal weld"),
                        QStringLiteral("Corvane")});
    subgroup.AddTestItem(QStringLiteral("Energy"), TestItem::kMeasuredValue);
    subgroup.addValue(1, 812.5);
    subgroup.addValue(2, 1.0 / 3.0);
    subgroup.AddTestItem(QStringLiteral("Reject Part Alarms"), TestItem::kAlarmList);
    subgroup.addValue(1, 1.0, QStringLiteral("Peak Power \"High\", limit"));
    subgroup.addValue(2, 1.0, QStringLiteral("Two\r\nlines"));
    return subgroup;
}

} // namespace

// The administration tool as a user runs it: its commands, its report of stored
// subgroups, and its exit status.
class TestSpcTool : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dataFolder;

private slots:
    void administersRecordsAndLimits_data() { addBackendRows(); }
    void administersRecordsAndLimits()
    {
        SCRATCH_DATABASE(scratch);
        const QString data = m_dataFolder.path();
        const auto run = [&](QStringList arguments) {
            arguments << QStringLiteral("--dsn") << scratch.dsn();
            const ToolRun result = runTool(arguments, data);
            if (result.exitCode != 0)
                qWarning("%s", qPrintable(result.err));
            return result;
        };
        ToolRun result = run({"init"});
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out,
                 QStringLiteral("schema version %1\n").arg(qlaDatabase6::Schema::latestVersion()));
        for (const QStringList &command :
             QList<QStringList>{{"add-group", "Line 3"},
                                {"add-part", "Housing, left", "--group", "Line 3"},
                                {"add-part", "Cover"},
                                {"add-process", "Seal weld", "--group", "Line 3"},
                                {"add-test", "Energy"},
                                {"add-test", "Weld Time"}})
            QVERIFY2(run(command).exitCode == 0, qPrintable(command.join(u' ')));
        result = run({"set-limits", "Housing, left", "Energy", "--usl", "12.5", "--lsl", "-1"});
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.out.contains(QLatin1String("flags 34")));
        QCOMPARE(
            run({"set-limits", "Housing, left", "Weld Time", "--uwl=0.3", "--lwl=0.1"}).exitCode,
            0);

        QCOMPARE(run({"list", "groups"}).out, QStringLiteral("Line 3\n"));
        QCOMPARE(run({"list", "parts"}).out, QStringLiteral("Cover\t\nHousing, left\tLine 3\n"));
        QCOMPARE(run({"list", "processes"}).out, QStringLiteral("Seal weld\tLine 3\n"));
        QCOMPARE(run({"list", "tests"}).out, QStringLiteral("Energy\nWeld Time\n"));
        QCOMPARE(run({"list", "limits"}).out,
                 QStringLiteral("Housing, left\tEnergy\t34\t12.5\t\t\t-1\n"
                                "Housing, left\tWeld Time\t20\t\t0.3\t0.1\t\n"));

        QCOMPARE(run({"set-limits", "Housing, left", "Energy", "--clear"}).exitCode, 0);
        QCOMPARE(run({"list", "limits"}).out,
                 QStringLiteral("Housing, left\tWeld Time\t20\t\t0.3\t0.1\t\n"));
    }

    void subgroupReportParsesBack_data() { addBackendRows(); }
    void subgroupReportParsesBack()
    {
        SCRATCH_DATABASE(scratch);
        const QString data = m_dataFolder.path();
        const QDateTime first(QDate(2026, 11, 14), QTime(22, 10, 0));
        const QDateTime second(QDate(2026, 11, 15), QTime(6, 0, 0, 500));
        QList<Subgroup> subgroups = {storedSubgroup(QStringLiteral("Housing"), first),
                                     storedSubgroup(QStringLiteral("Cover"), second)};
        QList<qint64> ids;
        {
            SqlDatabase database;
            QVERIFY(connectTo(database, scratch.dsn()));
            for (const Subgroup &subgroup : subgroups)
                ids.append(subgroup.store(database));
        }
        // The report's rows, or none when the tool fails or writes broken text.
        const auto report = [&](const QStringList &filter) {
            QList<QStringList> rows;
            const ToolRun run =
                runTool(QStringList({"subgroups", "--csv", "--dsn", scratch.dsn()}) + filter, data);
            if (run.exitCode != 0 || !parseCsv(run.out, rows)) {
                qWarning("%s%s", qPrintable(run.out), qPrintable(run.err));
                rows.clear();
            }
            return rows;
        };
        QList<QStringList> rows = report({});
        QCOMPARE(rows.size(), 1 + 2 * 4);
        QCOMPARE(rows.takeFirst(),
                 QStringList({"subgroup", "date_time", "part_group", "part", "process_group",
                              "process", "source_tag", "value_count", "test_item", "kind",
                              "sample_number", "value", "text"}));
        // Numbers and times are compared by value, whatever their spelling.
        const auto normal = [](QStringList fields) {
            if (fields.size() == 13) {
                fields[1] = QString::number(
                    QDateTime::fromString(fields[1], Qt::ISODateWithMs).toMSecsSinceEpoch());
                fields[11] = QString::number(fields[11].toDouble(), 'g', 17);
            }
            return fields;
        };
        QList<QStringList> expected;
        for (int s = 0; s < subgroups.size(); ++s) {
            const SubgroupHeader &h = subgroups[s].header();
            for (const TestItem &item : subgroups[s].testItems()) {
                for (const SubgroupValue &value : item.values) {
                    expected.append(
                        normal({QString::number(ids[s]), h.dateTime.toString(Qt::ISODateWithMs),
                                h.partGroup, h.part, h.processGroup, h.process, h.sourceTag,
                                QString::number(h.valueCount), item.name,
                                QString::number(item.kind), QString::number(value.sampleNumber),
                                QString::number(value.value, 'g', 17), value.text}));
                }
            }
        }
        QList<QStringList> found;
        for (const QStringList &fields : rows)
            found.append(normal(fields));
        QCOMPARE(found, expected);
        QCOMPARE(rows.at(0).at(1), QStringLiteral("2026-11-14T22:10:00"));

        QCOMPARE(report({"--part", "Cover"}).size(), 1 + 4);
        QCOMPARE(report({"--process", "Spot weld"}).size(), 1);
        QCOMPARE(report({"--since", "2026-11-15"}).size(), 1 + 4);

        // Without --csv every stored value is one line, whatever its text holds.
        const ToolRun plain = runTool({"subgroups", "--dsn", scratch.dsn()}, data);
        QCOMPARE(plain.exitCode, 0);
        QCOMPARE(int(plain.out.count(u'\n')), 1 + 2 * 4);
    }

    void failuresExitWithOne_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("message");
        QTest::newRow("unknown part")
            << QStringList({"set-limits", "Nothing", "Energy", "--usl", "1"}) << "unknown part";
        QTest::newRow("name taken") << QStringList({"add-part", "Housing"}) << "already exists";
        QTest::newRow("inverted limits")
            << QStringList({"set-limits", "Housing", "Energy", "--usl", "1", "--lsl", "2"})
            << "LimitLower > LimitUpper";
        QTest::newRow("bad data source")
            << QStringList({"list", "parts", "--dsn", "mysql://db/quality"}) << "unsupported";
        QTest::newRow("server not listening")
            << QStringList({"init", "--dsn", "postgresql://spc@127.0.0.1:1/quality"})
#ifdef Q_OS_WIN
            // The Windows build carries no PostgreSQL client.
            << "PostgreSQL is unavailable";
#else
            << "Unable to connect";
#endif
    }
    void failuresExitWithOne()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, message);
        QTemporaryDir data;
        QVERIFY(runTool({"add-part", "Housing"}, data.path()).exitCode == 0);
        QVERIFY(runTool({"add-test", "Energy"}, data.path()).exitCode == 0);
        const ToolRun result = runTool(arguments, data.path());
        QCOMPARE(result.exitCode, 1);
        QVERIFY2(result.err.startsWith(QLatin1String("corvane-spc: ")), qPrintable(result.err));
        QVERIFY2(result.err.contains(message), qPrintable(result.err));
        QCOMPARE(int(result.err.count(u'\n')), 1);
    }

    void badUsageExitsWithTwo_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("no command") << QStringList();
        QTest::newRow("unknown command") << QStringList({"frobnicate"});
        QTest::newRow("missing name") << QStringList({"add-part"});
        QTest::newRow("option of another command")
            << QStringList({"add-test", "T", "--group", "G"});
        QTest::newRow("no limit") << QStringList({"set-limits", "P", "T"});
        QTest::newRow("limit not a number")
            << QStringList({"set-limits", "P", "T", "--usl", "1,5"});
        QTest::newRow("unknown list") << QStringList({"list", "welders"});
        QTest::newRow("bad date") << QStringList({"subgroups", "--since", "yesterday"});
    }
    void badUsageExitsWithTwo()
    {
        QFETCH(QStringList, arguments);
        QTemporaryDir data;
        const ToolRun result = runTool(arguments, data.path());
        QCOMPARE(result.exitCode, 2);
        QVERIFY(result.err.contains(QLatin1String("Usage: corvane-spc")));
        // Bad usage never touches a database.
        QVERIFY(QDir(data.path()).isEmpty());
    }

    void defaultDatabaseIsInTheDataFolder()
    {
        QTemporaryDir root;
        const QString data = QDir(root.path()).filePath(QStringLiteral("Corvane"));
        QCOMPARE(runTool({"init"}, data).exitCode, 0);
        QVERIFY(QFileInfo::exists(QDir(data).filePath(QStringLiteral("spc.db"))));
        QCOMPARE(runTool({"add-test", "Energy"}, data).exitCode, 0);
        QCOMPARE(runTool({"list", "tests", "--dsn", QDir(data).filePath(QStringLiteral("spc.db"))},
                         root.path())
                     .out,
                 QStringLiteral("Energy\n"));
    }
};

QTEST_GUILESS_MAIN(TestSpcTool)
#include "tst_spctool.moc"

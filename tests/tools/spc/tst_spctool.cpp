#include "ScratchDatabase.h"

#include "platform/spc/Schema.h"
#include "platform/spc/SqlDatabase.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QTextStream>

#include <cmath>

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

    // The textbook subgroups of the statistics suite (X̄̄ 11, R̄ 3, n 5) carried through
    // import, report, a second database, chart, capability and frozen limits.
    void importChartAndCapability_data() { addBackendRows(); }
    void importChartAndCapability()
    {
        SCRATCH_DATABASE(scratch);
        const QString data = m_dataFolder.path();
        const auto tool = [&](QStringList arguments, const QString &dsn) {
            return runTool(arguments << QStringLiteral("--dsn") << dsn, data);
        };
        const auto rowsOf = [](const ToolRun &run) {
            QList<QStringList> rows;
            if (run.exitCode != 0 || !parseCsv(run.out, rows))
                qWarning("%s%s", qPrintable(run.out), qPrintable(run.err));
            return rows;
        };
        const QList<QList<double>> values = {
            {10, 12, 11, 13, 9}, {11, 11, 12, 10, 11}, {12, 14, 13, 11, 10}, {9, 10, 11, 10, 10}};
        QTemporaryDir folder;
        const QString file = folder.filePath(QStringLiteral("history.csv"));
        {
            QFile csv(file);
            QVERIFY(csv.open(QIODevice::WriteOnly));
            QTextStream out(&csv);
            out << "subgroup,date_time,part_group,part,process_group,process,source_tag,"
                   "value_count,test_item,kind,sample_number,value,text\r\n";
            for (int s = 0; s < values.size(); ++s) {
                const QString head = QStringLiteral("%1,2026-11-02T06:%2:00,Line 3,Housing,"
                                                    "Corvane,Seal weld,Corvane,5,")
                                         .arg(s + 7)
                                         .arg(s * 5, 2, 10, QLatin1Char('0'));
                for (int i = 0; i < 5; ++i)
                    out << head << "Energy,1," << i + 1 << ',' << values[s][i] << ",\r\n";
                out << head << "Reject Part Alarms,2,1,1,\"Peak, \"\"High\"\"\"\r\n";
            }
        }
        ToolRun run = tool({"import", file}, scratch.dsn());
        QCOMPARE(run.out, QStringLiteral("imported 4 subgroups, skipped 0 already stored\n"));
        QCOMPARE(tool({"list", "parts"}, scratch.dsn()).out, QStringLiteral("Housing\tLine 3\n"));

        // The report imports into a second database and reports the same there; a
        // repeated import stores nothing.
        const QList<QStringList> report = rowsOf(tool({"subgroups", "--csv"}, scratch.dsn()));
        QCOMPARE(report.size(), 1 + 4 * 6);
        ScratchDatabase second(QStringLiteral("sqlite"));
        QVERIFY(second.state() == ScratchDatabase::State::Ready);
        QCOMPARE(tool({"import", file}, second.dsn()).exitCode, 0);
        QProcess pipe;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("CORVANE_DATA_DIR"), data);
        pipe.setProcessEnvironment(environment);
        pipe.start(QStringLiteral(CORVANE_SPC_TOOL), {"import", "-", "--dsn", second.dsn()});
        pipe.write(tool({"subgroups", "--csv"}, scratch.dsn()).out.toUtf8());
        pipe.closeWriteChannel();
        QVERIFY(pipe.waitForFinished(60000));
        QCOMPARE(pipe.readAllStandardOutput(),
                 QByteArray("imported 0 subgroups, skipped 4 already stored\n"));
        QList<QStringList> copied = rowsOf(tool({"subgroups", "--csv"}, second.dsn()));
        QList<QStringList> original = report;
        for (QList<QStringList> *rows : {&copied, &original})
            for (QStringList &row : *rows)
                row.removeFirst();
        QCOMPARE(copied, original);

        // X̄ limits 11 ± A2 R̄ (A2 0.577), R limits 0 and D4 R̄ (D4 2.114).
        QList<QStringList> chart = rowsOf(tool(
            {"chart", "--part", "Housing", "--process", "Seal weld", "--test", "Energy", "--csv"},
            scratch.dsn()));
        QCOMPARE(chart.size(), 5);
        QCOMPARE(chart[0].join(u','),
                 QStringLiteral("subgroup,date_time,n,mean,range,stddev,x_cl,x_lcl,x_ucl,r_cl,"
                                "r_lcl,r_ucl,rules"));
        QCOMPARE(chart[3].mid(1, 5), QStringList({"2026-11-02T06:10:00", "5", "12", "4",
                                                  QString::number(std::sqrt(2.5), 'g', 17)}));
        QVERIFY(std::abs(chart[3][8].toDouble() - (11 + 0.577 * 3)) < 1e-3);
        QVERIFY(std::abs(chart[3][11].toDouble() - 2.114 * 3) < 5e-3);
        QCOMPARE(chart[3][10], QStringLiteral("0"));

        // Cp 9 / (6 R̄/d2) and Ppk 4 / (3 √(34/19)) with specification limits 7 and 16.
        QCOMPARE(
            tool({"set-limits", "Housing", "Energy", "--lsl", "7", "--usl", "16"}, scratch.dsn())
                .exitCode,
            0);
        const QList<QStringList> capability =
            rowsOf(tool({"capability", "--part", "Housing", "--process", "Seal weld", "--test",
                         "Energy", "--csv"},
                        scratch.dsn()));
        QCOMPARE(capability.size(), 2);
        QCOMPARE(capability[0].size(), 20);
        QCOMPARE(capability[1].mid(0, 3), QStringList({"20", "4", "11"}));
        QVERIFY(std::abs(capability[1][7].toDouble() - 9 / (6 * 3 / 2.326)) < 1e-9);
        QVERIFY(std::abs(capability[1][16].toDouble() - 4 / (3 * std::sqrt(34.0 / 19))) < 1e-9);

        // Limits frozen from the four; a shifted fifth subgroup breaks rule 1 against them.
        const QStringList characteristic = {"--part",    "Housing", "--process",
                                            "Seal weld", "--test",  "Energy"};
        QCOMPARE(
            tool(QStringList{"freeze-limits", "--baseline", "4"} + characteristic, scratch.dsn())
                .exitCode,
            0);
        Subgroup shifted;
        shifted.setHeader({true, 5, QDateTime(QDate(2026, 11, 2), QTime(7, 0)),
                           QStringLiteral("Line 3"), QStringLiteral("Housing"),
                           QStringLiteral("Corvane"), QStringLiteral("Seal weld"),
                           QStringLiteral("Corvane")});
        shifted.AddTestItem(QStringLiteral("Energy"), TestItem::kMeasuredValue);
        for (int i = 1; i <= 5; ++i)
            shifted.addValue(i, 13 + i % 2);
        {
            SqlDatabase database;
            QVERIFY(connectTo(database, scratch.dsn()));
            QVERIFY(shifted.store(database) > 0);
        }
        chart =
            rowsOf(tool(QStringList{"chart", "--frozen", "--csv"} + characteristic, scratch.dsn()));
        QCOMPARE(chart.size(), 6);
        QCOMPARE(chart[5].last(), QStringLiteral("1"));
        QCOMPARE(chart[4].last(), QString());
        QCOMPARE(tool(QStringList{"freeze-limits", "--since", "2026-11-02", "--until",
                                  "2026-11-02T06:15"} +
                          characteristic,
                      scratch.dsn())
                     .exitCode,
                 0);
        const QString limits = tool({"list", "control-limits"}, scratch.dsn()).out;
        QVERIFY2(limits.startsWith(QLatin1String("Housing\tSeal weld\tEnergy\txbar-r\t11\t")),
                 qPrintable(limits));
        RawConnection raw(scratch.dsn());
        QCOMPARE(raw.count(QStringLiteral("control_limits_history")), 1);
    }

    void analysisRefusals_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("message");
        const QStringList energy = {"--part",    "Housing", "--process",
                                    "Seal weld", "--test",  "Energy"};
        QTest::newRow("no test") << QStringList({"chart", "--part", "P", "--process", "Q"}) << 2
                                 << "Usage";
        QTest::newRow("baseline and frozen")
            << QStringList({"chart", "--baseline", "4", "--frozen"}) + energy << 2 << "Usage";
        QTest::newRow("rule 9") << QStringList({"chart", "--rules", "1,9"}) + energy << 2
                                << "Usage";
        QTest::newRow("freeze without baseline")
            << QStringList({"freeze-limits"}) + energy << 2 << "Usage";
        QTest::newRow("nothing frozen")
            << QStringList({"chart", "--frozen"}) + energy << 1 << "no control limits";
        QTest::newRow("no subgroups") << QStringList({"chart"}) + energy << 1 << "not enough data";
        QTest::newRow("not a report") << QStringList({"import", "/dev/null"}) << 1 << "heading";
        QTest::newRow("no file") << QStringList({"import", "/nonexistent/history.csv"}) << 1
                                 << "cannot read";
    }
    void analysisRefusals()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, exitCode);
        QFETCH(QString, message);
        QTemporaryDir data;
        const ToolRun result = runTool(arguments, data.path());
        QCOMPARE(result.exitCode, exitCode);
        QVERIFY2(result.err.contains(message), qPrintable(result.err));
    }
};

QTEST_GUILESS_MAIN(TestSpcTool)
#include "tst_spctool.moc"

#include "ProgramRun.h"
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

    // The report of stored subgroups reads back as a spreadsheet reads it, texts with
    // commas, quotes and line breaks intact; its filters narrow it.
    void subgroupReportParsesBack_data() { addBackendRows(); }
    void subgroupReportParsesBack()
    {
        SCRATCH_DATABASE(scratch);
        const QString data = m_dataFolder.path();
        qint64 housing = 0;
        {
            SqlDatabase database;
            QVERIFY(connectTo(database, scratch.dsn()));
            housing = storedSubgroup(QStringLiteral("Housing"),
                                     QDateTime(QDate(2026, 11, 14), QTime(22, 10, 0)))
                          .store(database);
            QVERIFY(storedSubgroup(QStringLiteral("Cover"),
                                   QDateTime(QDate(2026, 11, 15), QTime(6, 0, 0, 500)))
                        .store(database) > housing);
        }
        // The report's rows, or none when the tool fails or writes broken text.
        const auto report = [&](const QStringList &filter) {
            QList<QStringList> rows;
            const ToolRun run =
                runTool(QStringList({"subgroups", "--csv", "--dsn", scratch.dsn()}) + filter, data);
            if (run.exitCode != 0 || !ProgramRun::parseCsv(run.out, rows)) {
                qWarning("%s%s", qPrintable(run.out), qPrintable(run.err));
                rows.clear();
            }
            return rows;
        };
        const QList<QStringList> rows = report({});
        QCOMPARE(rows.size(), 1 + 2 * 4);
        QCOMPARE(rows[0].join(u','),
                 QStringLiteral("subgroup,date_time,part_group,part,process_group,process,"
                                "source_tag,value_count,test_item,kind,sample_number,value,text"));
        QCOMPARE(rows[1], QStringList({QString::number(housing), "2026-11-14T22:10:00",
                                       "Line 3, east", "Housing", "Corvane", "Seal weld", "Corvane",
                                       "2", "Energy", "1", "1", "812.5", ""}));
        QCOMPARE(rows[2][11].toDouble(), 1.0 / 3.0);
        QCOMPARE(rows[3].mid(8),
                 QStringList({"Reject Part Alarms", "2", "1", "1", "Peak Power \"High\", limit"}));
        QCOMPARE(rows[4].mid(10), QStringList({"2", "1", "Two\r\nlines"}));
        QCOMPARE(QDateTime::fromString(rows[5][1], Qt::ISODateWithMs),
                 QDateTime(QDate(2026, 11, 15), QTime(6, 0, 0, 500)));
        QCOMPARE(rows[8][3], QStringLiteral("Cover"));

        QCOMPARE(report({"--part", "Cover"}).size(), 1 + 4);
        QCOMPARE(report({"--process", "Spot weld"}).size(), 1);
        QCOMPARE(report({"--since", "2026-11-15"}).size(), 1 + 4);
        // Without --csv every stored value is one line, whatever its text holds.
        const ToolRun plain = runTool({"subgroups", "--dsn", scratch.dsn()}, data);
        QCOMPARE(plain.exitCode, 0);
        QCOMPARE(int(plain.out.count(u'\n')), 1 + 2 * 4);
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
            if (run.exitCode != 0 || !ProgramRun::parseCsv(run.out, rows))
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

    // Failures end with status 1 and one line that says why; bad usage ends with status 2
    // and the usage, and never touches a database. The rows marked "prepared" run on a
    // database that holds part Housing and test Energy.
    void refusals_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("prepared");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("message");
        const QStringList energy = {"--part",    "Housing", "--process",
                                    "Seal weld", "--test",  "Energy"};
        const auto row = [](const char *name, const QStringList &arguments, bool prepared,
                            int exitCode, const char *message) {
            QTest::newRow(name) << arguments << prepared << exitCode << QString(message);
        };
        row("unknown part", {"set-limits", "Nothing", "Energy", "--usl", "1"}, true, 1,
            "unknown part");
        row("name taken", {"add-part", "Housing"}, true, 1, "already exists");
        row("inverted limits", {"set-limits", "Housing", "Energy", "--usl", "1", "--lsl", "2"},
            true, 1, "LimitLower > LimitUpper");
        row("bad data source", {"list", "parts", "--dsn", "mysql://db/quality"}, true, 1,
            "unsupported");
#ifdef Q_OS_WIN
        // The Windows build carries no PostgreSQL client.
        const char *noServer = "PostgreSQL is unavailable";
#else
        const char *noServer = "Unable to connect";
#endif
        row("server not listening", {"init", "--dsn", "postgresql://spc@127.0.0.1:1/quality"}, true,
            1, noServer);
        row("nothing frozen", QStringList{"chart", "--frozen"} + energy, false, 1,
            "no control limits");
        row("no subgroups", QStringList{"chart"} + energy, false, 1, "not enough data");
        row("not a report", {"import", "/dev/null"}, false, 1, "heading");
        row("no file", {"import", "/nonexistent/history.csv"}, false, 1, "cannot read");
        const char *usage = "Usage: corvane-spc";
        row("no command", {}, false, 2, usage);
        row("unknown command", {"frobnicate"}, false, 2, usage);
        row("missing name", {"add-part"}, false, 2, usage);
        row("option of another command", {"add-test", "T", "--group", "G"}, false, 2, usage);
        row("no limit", {"set-limits", "P", "T"}, false, 2, usage);
        row("limit not a number", {"set-limits", "P", "T", "--usl", "1,5"}, false, 2, usage);
        row("unknown list", {"list", "welders"}, false, 2, usage);
        row("bad date", {"subgroups", "--since", "yesterday"}, false, 2, usage);
        row("chart without test", {"chart", "--part", "P", "--process", "Q"}, false, 2, usage);
        row("baseline and frozen", QStringList{"chart", "--baseline", "4", "--frozen"} + energy,
            false, 2, usage);
        row("rule 9", QStringList{"chart", "--rules", "1,9"} + energy, false, 2, usage);
        row("freeze without baseline", QStringList{"freeze-limits"} + energy, false, 2, usage);
    }

    void refusals()
    {
        QFETCH(QStringList, arguments);
        QFETCH(bool, prepared);
        QFETCH(int, exitCode);
        QFETCH(QString, message);
        QTemporaryDir data;
        if (prepared) {
            QVERIFY(runTool({"add-part", "Housing"}, data.path()).exitCode == 0);
            QVERIFY(runTool({"add-test", "Energy"}, data.path()).exitCode == 0);
        }
        const ToolRun result = runTool(arguments, data.path());
        QCOMPARE(result.exitCode, exitCode);
        QVERIFY2(result.err.contains(message), qPrintable(result.err));
        if (exitCode == 1 && prepared) {
            QVERIFY2(result.err.startsWith(QLatin1String("corvane-spc: ")), qPrintable(result.err));
            QCOMPARE(int(result.err.count(u'\n')), 1);
        }
        if (exitCode == 2)
            QVERIFY(QDir(data.path()).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestSpcTool)
#include "tst_spctool.moc"

#include "platform/qlxLanguage.h"
#include "protocol/AlarmCodes.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include "HeadlessEnvironment.h"

namespace {

constexpr int kWelds = 16;

// Data log columns of the weld time and of the alarm words, by group.
constexpr int kWeldTimeColumn = 8;
const QList<std::pair<AlarmGroup, int>> kAlarmColumns = {{AlarmGroup::RejectPart, 20},
                                                         {AlarmGroup::SuspectPart, 21},
                                                         {AlarmGroup::NoCycle, 22},
                                                         {AlarmGroup::Overload, 23},
                                                         {AlarmGroup::EquipmentFailure, 24},
                                                         {AlarmGroup::CycleModified, 25},
                                                         {AlarmGroup::Note, 27}};
const QMap<AlarmGroup, QString> kAlarmItems = {
    {AlarmGroup::RejectPart, "Reject Part Alarms"},
    {AlarmGroup::SuspectPart, "Suspect Part Alarms"},
    {AlarmGroup::NoCycle, "No Cycle Alarms"},
    {AlarmGroup::Overload, "Overload Alarms"},
    {AlarmGroup::EquipmentFailure, "Equipment Failure Alarms"},
    {AlarmGroup::CycleModified, "Cycle Modified Alarms"},
    {AlarmGroup::Note, "Note Alarms"}};

const QStringList kCharacteristics = {"Weld Time",     "Energy",         "Total Absolute",
                                      "Weld Collapse", "Total Collapse", "Velocity",
                                      "Peak Power",    "Weld Force"};

// One row of `corvane-spc subgroups --csv`.
struct Row
{
    qint64 subgroup;
    QString part;
    QString partGroup;
    QString process;
    QString sourceTag;
    int valueCount;
    QString item;
    int sampleNumber;
    double value;
    QString text;
};

QStringList csvFields(const QString &line)
{
    QStringList fields;
    QString field;
    bool quoted = false;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const QChar c = line[i];
        if (quoted && c == u'"' && i + 1 < line.size() && line[i + 1] == u'"') {
            field += c;
            ++i;
        } else if (c == u'"') {
            quoted = !quoted;
        } else if (c == u',' && !quoted) {
            fields << field;
            field.clear();
        } else {
            field += c;
        }
    }
    return fields << field;
}

QStringList fileLines(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
}

// The texts of the alarms whose bits are set in word, as the default language names them.
QSet<QString> alarmTexts(AlarmGroup group, qint32 word)
{
    QSet<QString> texts;
    const AlarmTable table = CorvaneUSWSupport::AlarmCodes(group);
    for (int bit = 0; bit < 32; ++bit) {
        if ((word & CorvaneUSWSupport::ConvertBitToLong(bit)) && !table[bit].isEmpty())
            texts.insert(qlxLanguage::defaultText(table[bit]).toString());
    }
    return texts;
}

} // namespace

// corvane-monitor --headless sampling into an SPC database prepared with corvane-spc,
// while corvane-sim welds over loopback TCP: after a stop by signal, the subgroups in
// the database hold exactly the welds of the data log.
class TestHeadlessSampling : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    QString m_dsn;

    bool spc(const QStringList &arguments, QByteArray *output = nullptr)
    {
        QProcess tool;
        tool.start(QStringLiteral(CORVANE_SPC_EXE), QStringList(arguments) << "--dsn" << m_dsn);
        if (!tool.waitForFinished(20000) || tool.exitStatus() != QProcess::NormalExit ||
            tool.exitCode() != 0) {
            qWarning() << arguments << tool.readAllStandardError();
            return false;
        }
        if (output)
            *output = tool.readAllStandardOutput();
        return true;
    }

    QList<Row> subgroups()
    {
        QByteArray csv;
        if (!spc({"subgroups", "--csv"}, &csv))
            return {};
        QList<Row> rows;
        const QStringList lines = QString::fromUtf8(csv).split("\r\n", Qt::SkipEmptyParts);
        for (const QString &line : lines.mid(1)) {
            const QStringList f = csvFields(line);
            if (f.size() != 13)
                return {};
            rows.append({f[0].toLongLong(), f[3], f[2], f[5], f[6], f[7].toInt(), f[8],
                         f[10].toInt(), QLocale::c().toDouble(f[11]), f[12]});
        }
        return rows;
    }

    // A database of its own on the plant-wide test server, so that no other suite's
    // parts and subgroups mix with this one's.
    static QString freshServerDatabase(const QString &serverDsn)
    {
        const QString name =
            QStringLiteral("corvane_headless_%1").arg(QCoreApplication::applicationPid());
        for (const QString &command :
             {QStringLiteral("DROP DATABASE IF EXISTS %1"), QStringLiteral("CREATE DATABASE %1")}) {
            QProcess psql;
            psql.start(QStringLiteral("psql"),
                       {serverDsn, "-v", "ON_ERROR_STOP=1", "-q", "-c", command.arg(name)});
            if (!psql.waitForFinished(20000) || psql.exitCode() != 0) {
                qWarning() << psql.readAllStandardError();
                return {};
            }
        }
        return serverDsn.left(serverDsn.lastIndexOf(u'/') + 1) + name;
    }

private slots:
    void subgroupsHoldTheWeldsOfTheDataLog_data()
    {
        QTest::addColumn<bool>("plantServer");
        QTest::newRow("SQLite file") << false;
        QTest::newRow("PostgreSQL server") << true;
    }

    void subgroupsHoldTheWeldsOfTheDataLog()
    {
        QFETCH(bool, plantServer);
        if (plantServer) {
            const QString server = qEnvironmentVariable("CORVANE_TEST_PG_DSN");
            if (server.isEmpty())
                QSKIP("CORVANE_TEST_PG_DSN is not set: run under scripts/with-postgres.sh");
            m_dsn = freshServerDatabase(server);
            QVERIFY2(!m_dsn.isEmpty(), "could not create a database on the test server");
        } else {
            m_dsn = m_folder.filePath(QStringLiteral("plant.db"));
        }
        QFile::remove(m_folder.filePath(QStringLiteral("corvane-monitor.cfg")));
        QVERIFY(spc({"init"}));
        QVERIFY(spc({"add-part", "Housing"}));
        QVERIFY(spc({"add-process", "Seal weld"}));
        for (const QString &name : kCharacteristics)
            QVERIFY(spc({"add-test", name}));
        QVERIFY(spc({"set-limits", "Housing", "Energy", "--usl", "900", "--lsl", "100"}));

        QProcess sim;
        sim.start(QStringLiteral(CORVANE_SIM_EXE),
                  {"--tcp", "0", "--count", QString::number(kWelds), "--interval", "200", "--seed",
                   "11", "--alarm-probability", "0.3"});
        QVERIFY(sim.waitForStarted(5000));
        QTRY_VERIFY_WITH_TIMEOUT(sim.canReadLine(), 5000);
        const QRegularExpressionMatch announced =
            QRegularExpression(QStringLiteral("^tcp 127\\.0\\.0\\.1:(\\d+)\\s*$"))
                .match(QString::fromUtf8(sim.readLine()));
        QVERIFY2(announced.hasMatch(), "corvane-sim announced no port");

        // Periods of two seconds, each far shorter than a subgroup of 50 welds.
        const QString dataLog = m_folder.filePath(QStringLiteral("press 1.txt"));
        QFile::remove(dataLog);
        QFile configurations(m_folder.filePath(QStringLiteral("corvane-monitor.cfg")));
        QVERIFY(configurations.open(QIODevice::WriteOnly));
        configurations.write(
            QStringLiteral("<Configurations><Configuration>"
                           "<Equipment Name=\"Press 1\" Settings=\"IP:127.0.0.1:%1\"/>"
                           "<DataLogging Enable=\"1\" File=\"%2\"/>"
                           "<Sampling Enabled=\"True\" SamplingPeriod=\"2\" CollectionType=\"1\" "
                           "SubgroupSize=\"50\" EnableAlarmLogging=\"True\" LogAlarms=\"127\">"
                           "<Database DSN=\"%3\"/><Part Name=\"Housing\" Reselect=\"False\"/>"
                           "<Process Name=\"Seal weld\"/></Sampling>"
                           "</Configuration></Configurations>")
                .arg(announced.captured(1), dataLog, m_dsn)
                .toUtf8());
        configurations.close();

        QProcess monitor;
        QProcessEnvironment env = headlessEnvironment(QDir(m_folder.path()));
        env.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
        monitor.setProcessEnvironment(env);
        monitor.start(QStringLiteral(CORVANE_MONITOR_EXE),
                      {"--headless", "--data-dir", m_folder.path()});
        QVERIFY(monitor.waitForStarted(5000));
        QTRY_COMPARE_WITH_TIMEOUT(fileLines(dataLog).size(), kWelds + 1, 30000);
        QTRY_COMPARE_WITH_TIMEOUT(sim.state(), QProcess::NotRunning, 10000);
        // Stopping saves the period that is still open.
        monitor.terminate();
        QVERIFY(monitor.waitForFinished(10000));
        QVERIFY2(monitor.exitCode() == 0, monitor.readAllStandardError().constData());
        QVERIFY2(!QFile::exists(m_folder.filePath("corvane-monitor.errors.log")),
                 monitor.readAllStandardError().constData());

        const QList<Row> rows = subgroups();
        QVERIFY(!rows.isEmpty());
        QList<qint64> order;
        QMap<qint64, int> counts;
        QMap<qint64, QList<double>> weldTimes;
        QMap<qint64, QMap<QString, QSet<QString>>> alarms;
        QMap<qint64, QStringList> items;
        for (const Row &row : rows) {
            QCOMPARE(row.part, QStringLiteral("Housing"));
            QCOMPARE(row.partGroup, QStringLiteral("Corvane"));
            QCOMPARE(row.process, QStringLiteral("Seal weld"));
            QCOMPARE(row.sourceTag, QStringLiteral("Corvane"));
            if (!order.contains(row.subgroup))
                order << row.subgroup;
            counts[row.subgroup] = row.valueCount;
            if (!items[row.subgroup].contains(row.item))
                items[row.subgroup] << row.item;
            if (row.item == QLatin1String("Weld Time")) {
                QCOMPARE(row.sampleNumber, weldTimes[row.subgroup].size() + 1);
                weldTimes[row.subgroup].prepend(row.value); // newest first in the database
            } else if (row.value == 1.0 && !row.text.isEmpty()) {
                alarms[row.subgroup][row.item].insert(row.text);
            }
        }
        QVERIFY2(order.size() >= 2, "the welds spread over at least two periods");

        // Every weld of the data log is in one subgroup, in the order they came.
        const QStringList logged = fileLines(dataLog).mid(1);
        int total = 0;
        int line = 0;
        for (const qint64 id : order) {
            QCOMPARE(items[id].size(), kCharacteristics.size() + 1 + kAlarmItems.size());
            QCOMPARE(weldTimes[id].size(), counts[id]);
            QMap<QString, QSet<QString>> expectedAlarms;
            for (const double weldTime : weldTimes[id]) {
                const QStringList fields = logged.value(line++).split(u'\t');
                QCOMPARE(QLocale::c().toString(weldTime, 'g', 15), fields.value(kWeldTimeColumn));
                for (const auto &[group, column] : kAlarmColumns) {
                    const QSet<QString> texts = alarmTexts(group, fields.value(column).toInt());
                    if (!texts.isEmpty())
                        expectedAlarms[kAlarmItems[group]].unite(texts);
                }
            }
            QCOMPARE(alarms[id], expectedAlarms);
            total += counts[id];
        }
        QCOMPARE(total, kWelds);

        // The settings went back to the configurations file as they came.
        QVERIFY(configurations.open(QIODevice::ReadOnly));
        const QByteArray saved = configurations.readAll();
        QVERIFY2(saved.contains(QStringLiteral("DSN=\"%1\"").arg(m_dsn).toUtf8()),
                 saved.constData());
        QVERIFY2(saved.contains("SamplingPeriod=\"2\""), saved.constData());
    }

    // Subgroups queued while the database file's folder is missing survive kill -9, and
    // the next run forwards every one of them.
    void backlogSurvivesKillAndIsForwarded()
    {
        QTemporaryDir folder;
        m_dsn = folder.filePath(QStringLiteral("plant/spc.db"));
        QProcess sim;
        sim.start(QStringLiteral(CORVANE_SIM_EXE), {"--tcp", "0", "--interval", "100"});
        QVERIFY(sim.waitForStarted(5000) && sim.waitForReadyRead(5000));
        const QString port = QRegularExpression("(\\d+)\\s*$").match(sim.readLine()).captured(1);
        QFile configurations(folder.filePath(QStringLiteral("corvane-monitor.cfg")));
        QVERIFY(configurations.open(QIODevice::WriteOnly));
        configurations.write(QStringLiteral("<Configurations><Configuration><Equipment Name=\"P\" "
                                            "Settings=\"IP:127.0.0.1:%1\"/><Sampling Enabled=\"1\" "
                                            "SamplingPeriod=\"1\"><Database DSN=\"%2\"/><Part "
                                            "Name=\"H\"/><Process Name=\"S\"/></Sampling>"
                                            "</Configuration></Configurations>")
                                 .arg(port, m_dsn)
                                 .toUtf8());
        configurations.close();
        const QStringList outbox = {"outbox", "--outbox",
                                    folder.filePath("corvane-monitor.outbox")};
        const auto waiting = [&] {
            QByteArray listing;
            spc(outbox, &listing);
            return QRegularExpression("(\\d+) subgroup")
                .match(QString::fromUtf8(listing))
                .captured(1)
                .toInt();
        };
        QProcess monitor;
        monitor.start(QStringLiteral(CORVANE_MONITOR_EXE),
                      {"--headless", "--data-dir", folder.path()});
        QTRY_VERIFY_WITH_TIMEOUT(waiting() >= 3, 20000);
        monitor.kill();
        QVERIFY(monitor.waitForFinished(5000));
        const int queued = waiting();

        QVERIFY(QDir().mkpath(folder.filePath("plant")));
        monitor.start(QStringLiteral(CORVANE_MONITOR_EXE),
                      {"--headless", "--data-dir", folder.path()});
        QTRY_COMPARE_WITH_TIMEOUT(waiting(), 0, 20000);
        monitor.terminate();
        QVERIFY(monitor.waitForFinished(10000));
        sim.kill();
        sim.waitForFinished(5000);
        QSet<qint64> stored;
        for (const Row &row : subgroups())
            stored.insert(row.subgroup);
        QVERIFY2(stored.size() >= queued, qPrintable(QString::number(stored.size())));
    }
};

QTEST_GUILESS_MAIN(TestHeadlessSampling)
#include "tst_headless_sampling.moc"

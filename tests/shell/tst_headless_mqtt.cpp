#include "HeadlessEnvironment.h"
#include "MosquittoBroker.h"
#include "ProgramRun.h"
#include "SpcBaseline.h"

#include "platform/RegionalFormat.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

// corvane-monitor --headless --mqtt against corvane-sim and the broker that
// scripts/with-mosquitto.sh started: the weld messages are the data log's lines, the
// subgroup messages the SPC database's rows.
class TestHeadlessMqtt : public QObject
{
    Q_OBJECT

private slots:
    // With limits frozen on a baseline and the welder's energy moved far from it, the
    // first subgroup also breaks rule 1.
    void weldAndSubgroupMessagesEqualTheLogsAndTheWillMarksAKill()
    {
        const quint16 broker = quint16(qEnvironmentVariableIntValue("CORVANE_TEST_MQTT_PORT"));
        if (broker == 0)
            QSKIP("CORVANE_TEST_MQTT_PORT is not set; run under scripts/with-mosquitto.sh");
        constexpr int kWelds = 25;
        QTemporaryDir folder;
        const QString dsn = folder.filePath(QStringLiteral("plant.db"));
        const auto spc = [&dsn](QStringList arguments, QByteArray *output = nullptr,
                                const QByteArray &input = {}) {
            return ProgramRun::runTool(QStringLiteral(CORVANE_SPC_EXE), arguments << "--dsn" << dsn,
                                       output, input);
        };
        QVERIFY(spc({"import", "-"}, nullptr, spcBaselineReport()));
        QVERIFY(spc({"freeze-limits", "--part", "Housing", "--process", "Seal weld", "--test",
                     "Energy", "--baseline", "10"}));
        const QString root =
            QStringLiteral("t") + QString::number(QCoreApplication::applicationPid());
        MqttSubscriber subscriber(broker, root + QStringLiteral("/#"));
        QVERIFY(subscriber.waitSubscribed());

        QProcess sim;
        const quint16 port =
            ProgramRun::startSimulator(sim, QStringLiteral(CORVANE_SIM_EXE),
                                       {"--count", QString::number(kWelds), "--interval", "20",
                                        "--seed", "11", "--us", "--energy", "800"});
        QVERIFY(port != 0);

        const QString dataLog = folder.filePath(QStringLiteral("press.txt"));
        QVERIFY(ProgramRun::writeFile(
            folder.filePath(QStringLiteral("corvane-monitor.cfg")),
            QStringLiteral("<Configurations><Configuration><Equipment "
                           "Name=\"Line 2/Press #1\" Settings=\"IP:127.0.0.1:%1\"/>"
                           "<DataLogging Enable=\"1\" File=\"%2\"/>"
                           "<Sampling Enabled=\"True\" SamplingPeriod=\"1\" CollectionType=\"1\" "
                           "SubgroupSize=\"5\" EnableAlarmLogging=\"True\" LogAlarms=\"127\">"
                           "<Database DSN=\"%3\"/><Part Name=\"Housing\" Reselect=\"False\"/>"
                           "<Process Name=\"Seal weld\"/></Sampling>"
                           "</Configuration></Configurations>")
                .arg(QString::number(port), dataLog, dsn)
                .toUtf8()));
        QVERIFY(ProgramRun::writeFile(folder.filePath(QStringLiteral("corvane-monitor.ini")),
                                      "[PREFERENCES]\nMEASUREMENT_SYSTEM=1\n"));

        QProcess monitor;
        monitor.setProcessEnvironment(headlessEnvironment(QDir(folder.path())));
        monitor.start(QStringLiteral(CORVANE_MONITOR_EXE),
                      {"--headless", "--data-dir", folder.path(), "--mqtt",
                       QStringLiteral("mqtt://127.0.0.1:%1/%2").arg(broker).arg(root)});
        const auto cleanUp = qScopeGuard([&] {
            monitor.kill();
            sim.kill();
            monitor.waitForFinished(5000);
            sim.waitForFinished(5000);
        });

        const QString weldTopic = root + QStringLiteral("/Line 2%2FPress %231/weld");
        QTRY_COMPARE_WITH_TIMEOUT(subscriber.payloads(weldTopic).size(), kWelds, 30000);
        const QStringList lines = ProgramRun::dataLogLines(dataLog);
        QCOMPARE(lines.size(), kWelds + 1);

        // The data log's columns after the acquisition time, by record field.
        const QStringList kColumns =
            QStringLiteral("CycleCount Hour Minute Second Year Month Day ActualWeldTime "
                           "TotalEnergy ActualDistance ActualWeldCollapse ActualTotalCollapse "
                           "ActualStartFrequency ActualEndFrequency FrequencyChange "
                           "FrequencyMinimum FrequencyMaximum ActualVelocity TriggerDistance "
                           "RejectPartAlarms SuspectPartAlarms NoCycleAlarms OverloadAlarms "
                           "EquipmentFailureAlarms CycleModifiedAlarms PresetNumber NoteAlarms "
                           "SetAmplitudeA SetAmplitudeB WeldMode PowerSupplyControlFlags "
                           "PeakPower WeldPresure WeldForceEnd HoldForceEnd TotalCycleTime")
                .split(u' ');
        const RegionalFormat format;
        const QList<QByteArray> welds = subscriber.payloads(weldTopic);
        for (int i = 0; i < kWelds; ++i) {
            const QJsonObject weld = QJsonDocument::fromJson(welds[i]).object();
            const QJsonObject record = weld.value("record").toObject();
            const QStringList columns = lines[i + 1].split(u'\t');
            QCOMPARE(weld.value("configuration").toString(), QStringLiteral("Line 2/Press #1"));
            QCOMPARE(weld.value("unitSystem").toString(), QStringLiteral("US"));
            QCOMPARE(weld.value("cycleCount").toInt(), columns[1].toInt());
            QCOMPARE(format.dateTime(QDateTime::fromString(weld.value("acquiredTime").toString(),
                                                           Qt::ISODateWithMs)),
                     columns[0]);
            for (int c = 0; c < kColumns.size(); ++c) {
                const double logged = format.locale().toDouble(columns[c + 1]);
                const double published = record.value(kColumns[c]).toDouble();
                QVERIFY2(qAbs(logged - published) <= 1e-13 * qMax(1.0, qAbs(logged)),
                         qPrintable(QStringLiteral("weld %1 %2: %3 vs %4")
                                        .arg(i)
                                        .arg(kColumns[c], columns[c + 1])
                                        .arg(published)));
            }
        }
        QCOMPARE(subscriber.payloads(root + QStringLiteral("/status")).last(), "online");

        // Every subgroup is published once stored; together they hold every weld.
        const QString prefix = root + QStringLiteral("/Line 2%2FPress %231/");
        QList<QJsonObject> subgroups;
        const auto weldsSampled = [&] {
            subgroups.clear();
            int count = 0;
            for (const QByteArray &payload : subscriber.payloads(prefix + "subgroup")) {
                subgroups << QJsonDocument::fromJson(payload).object();
                count += subgroups.last()["valueCount"].toInt();
            }
            return count;
        };
        QTRY_COMPARE_WITH_TIMEOUT(weldsSampled(), kWelds, 10000);
        // Their rows as `corvane-spc subgroups --csv` lists them, after the subgroup number,
        // and the mean energy of each.
        QList<QStringList> published;
        QHash<QString, double> energies;
        const auto msecs = [](const QString &time) {
            return QString::number(
                QDateTime::fromString(time, Qt::ISODateWithMs).toMSecsSinceEpoch());
        };
        for (const QJsonObject &subgroup : std::as_const(subgroups)) {
            QCOMPARE(subgroup["queued"].toBool(true), false);
            QStringList header{msecs(subgroup["dateTime"].toString())};
            for (const char *key : {"partGroup", "part", "processGroup", "process", "sourceTag"})
                header << subgroup[QLatin1String(key)].toString();
            header << QString::number(subgroup["valueCount"].toInt());
            for (const QJsonValue &item : subgroup["testItems"].toArray()) {
                const QJsonArray values = item["values"].toArray();
                for (const QJsonValue &value : values) {
                    published << header + QStringList{
                                              item["name"].toString(),
                                              QString::number(item["kind"].toInt()),
                                              QString::number(value["sample"].toInt()),
                                              QString::number(value["value"].toDouble(), 'g', 17),
                                              value["text"].toString()};
                    if (item["name"].toString() == u"Energy")
                        energies[subgroup["dateTime"].toString()] +=
                            value["value"].toDouble() / values.size();
                }
            }
        }
        QByteArray report;
        QVERIFY(spc({"subgroups", "--part", "Housing", "--since", "2026-11-02", "--csv"}, &report));
        QList<QStringList> stored;
        QVERIFY(ProgramRun::parseCsv(QString::fromUtf8(report), stored));
        stored.removeFirst();
        for (QStringList &row : stored) {
            row.removeFirst();
            row[0] = msecs(row[0]);
            row[10] = QString::number(QLocale::c().toDouble(row[10]), 'g', 17);
        }
        QCOMPARE(published, stored);

        QTRY_VERIFY(!subscriber.payloads(prefix + "rule").isEmpty());
        const QJsonObject rule =
            QJsonDocument::fromJson(subscriber.payloads(prefix + "rule")[0]).object();
        QCOMPARE(rule["text"].toString(), "Energy - Rule 1: one point beyond 3 sigma");
        QCOMPARE(rule["chart"].toString(), "mean");
        const double energy = energies.value(rule["subgroupTime"].toString());
        QCOMPARE(rule["value"].toDouble(), energy);
        QVERIFY(rule["lowerLimit"].toDouble() < rule["centre"].toDouble());
        QVERIFY(rule["centre"].toDouble() < rule["upperLimit"].toDouble());
        QVERIFY(rule["upperLimit"].toDouble() < energy);

        // A monitor that vanishes without a word: the broker publishes its last will.
        monitor.kill();
        QTRY_COMPARE_WITH_TIMEOUT(subscriber.payloads(root + QStringLiteral("/status")).last(),
                                  "offline", 60000);
    }
};

QTEST_GUILESS_MAIN(TestHeadlessMqtt)
#include "tst_headless_mqtt.moc"

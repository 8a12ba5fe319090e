#include "MosquittoBroker.h"
#include "SpcBaseline.h"

#include "platform/RegionalFormat.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include <optional>

// corvane-monitor --headless --mqtt against corvane-sim and the broker that
// scripts/with-mosquitto.sh started: the weld messages are the data log's lines, the
// subgroup messages the SPC database's rows.
class TestHeadlessMqtt : public QObject
{
    Q_OBJECT

private:
    // corvane-spc on the database dsn: its standard output, nothing when it failed.
    static std::optional<QByteArray> spc(const QString &dsn, const QStringList &arguments,
                                         const QByteArray &input = {})
    {
        QProcess tool;
        tool.start(QStringLiteral(CORVANE_SPC_EXE), QStringList(arguments) << "--dsn" << dsn);
        tool.write(input);
        tool.closeWriteChannel();
        if (!tool.waitForFinished(20000) || tool.exitCode() != 0)
            return std::nullopt;
        return tool.readAllStandardOutput();
    }

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
        QVERIFY(spc(dsn, {"import", "-"}, spcBaselineReport()));
        QVERIFY(spc(dsn, {"freeze-limits", "--part", "Housing", "--process", "Seal weld", "--test",
                          "Energy", "--baseline", "10"}));
        const QString root =
            QStringLiteral("t") + QString::number(QCoreApplication::applicationPid());
        MqttSubscriber subscriber(broker, root + QStringLiteral("/#"));
        QVERIFY(subscriber.waitSubscribed());

        QProcess sim;
        sim.start(QStringLiteral(CORVANE_SIM_EXE),
                  {"--tcp", "0", "--count", QString::number(kWelds), "--interval", "20", "--seed",
                   "11", "--us", "--energy", "800"});
        QVERIFY(sim.waitForStarted(5000));
        QTRY_VERIFY(sim.canReadLine());
        const QRegularExpressionMatch port =
            QRegularExpression(QStringLiteral("tcp 127\\.0\\.0\\.1:(\\d+)")).match(sim.readLine());
        QVERIFY(port.hasMatch());

        const QString dataLog = folder.filePath(QStringLiteral("press.txt"));
        QFile configurations(folder.filePath(QStringLiteral("corvane-monitor.cfg")));
        QVERIFY(configurations.open(QIODevice::WriteOnly));
        configurations.write(
            QStringLiteral("<Configurations><Configuration><Equipment "
                           "Name=\"Line 2/Press #1\" Settings=\"IP:127.0.0.1:%1\"/>"
                           "<DataLogging Enable=\"1\" File=\"%2\"/>"
                           "<Sampling Enabled=\"True\" SamplingPeriod=\"1\" CollectionType=\"1\" "
                           "SubgroupSize=\"5\" EnableAlarmLogging=\"True\" LogAlarms=\"127\">"
                           "<Database DSN=\"%3\"/><Part Name=\"Housing\" Reselect=\"False\"/>"
                           "<Process Name=\"Seal weld\"/></Sampling>"
                           "</Configuration></Configurations>")
                .arg(port.captured(1), dataLog, dsn)
                .toUtf8());
        configurations.close();
        QFile preferences(folder.filePath(QStringLiteral("corvane-monitor.ini")));
        QVERIFY(preferences.open(QIODevice::WriteOnly));
        preferences.write("[PREFERENCES]\nMEASUREMENT_SYSTEM=1\n");
        preferences.close();

        QProcess monitor;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("CORVANE_SETTINGS_FILE"), folder.filePath("settings.ini"));
        monitor.setProcessEnvironment(env);
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
        QFile log(dataLog);
        QVERIFY(log.open(QIODevice::ReadOnly));
        const QStringList lines =
            QString::fromUtf8(log.readAll()).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), kWelds + 1);

        // The data log's columns after the acquisition time, by record field.
        static const char *const kColumns[] = {"CycleCount",
                                               "Hour",
                                               "Minute",
                                               "Second",
                                               "Year",
                                               "Month",
                                               "Day",
                                               "ActualWeldTime",
                                               "TotalEnergy",
                                               "ActualDistance",
                                               "ActualWeldCollapse",
                                               "ActualTotalCollapse",
                                               "ActualStartFrequency",
                                               "ActualEndFrequency",
                                               "FrequencyChange",
                                               "FrequencyMinimum",
                                               "FrequencyMaximum",
                                               "ActualVelocity",
                                               "TriggerDistance",
                                               "RejectPartAlarms",
                                               "SuspectPartAlarms",
                                               "NoCycleAlarms",
                                               "OverloadAlarms",
                                               "EquipmentFailureAlarms",
                                               "CycleModifiedAlarms",
                                               "PresetNumber",
                                               "NoteAlarms",
                                               "SetAmplitudeA",
                                               "SetAmplitudeB",
                                               "WeldMode",
                                               "PowerSupplyControlFlags",
                                               "PeakPower",
                                               "WeldPresure",
                                               "WeldForceEnd",
                                               "HoldForceEnd",
                                               "TotalCycleTime"};
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
            for (int c = 0; c < int(std::size(kColumns)); ++c) {
                const double logged = format.locale().toDouble(columns[c + 1]);
                const double published = record.value(QLatin1String(kColumns[c])).toDouble();
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
        QStringList published;
        QHash<QString, double> energies;
        for (const QJsonObject &subgroup : std::as_const(subgroups)) {
            QCOMPARE(subgroup["queued"].toBool(true), false);
            QStringList header{QString::number(
                QDateTime::fromString(subgroup["dateTime"].toString(), Qt::ISODateWithMs)
                    .toMSecsSinceEpoch())};
            for (const char *key : {"partGroup", "part", "processGroup", "process", "sourceTag"})
                header << subgroup[QLatin1String(key)].toString();
            header << QString::number(subgroup["valueCount"].toInt());
            for (const QJsonValue &item : subgroup["testItems"].toArray()) {
                const QJsonArray values = item["values"].toArray();
                for (const QJsonValue &value : values) {
                    published << (header +
                                  QStringList{item["name"].toString(),
                                              QString::number(item["kind"].toInt()),
                                              QString::number(value["sample"].toInt()),
                                              QString::number(value["value"].toDouble(), 'g', 17),
                                              value["text"].toString()})
                                     .join(u',');
                    if (item["name"].toString() == u"Energy")
                        energies[subgroup["dateTime"].toString()] +=
                            value["value"].toDouble() / values.size();
                }
            }
        }
        QStringList stored;
        const auto report =
            spc(dsn, {"subgroups", "--part", "Housing", "--since", "2026-11-02", "--csv"});
        QVERIFY(report);
        for (const QString &line : QString::fromUtf8(*report).trimmed().split(u'\n').mid(1)) {
            QStringList fields = line.trimmed().split(u',').mid(1);
            fields[0] = QString::number(
                QDateTime::fromString(fields[0], Qt::ISODateWithMs).toMSecsSinceEpoch());
            fields[10] = QString::number(QLocale::c().toDouble(fields[10]), 'g', 17);
            stored << fields.join(u',');
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

#include "HeadlessEnvironment.h"
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
    // Starts corvane-sim on a loopback TCP port; the port it announced, empty when none.
    static QString startSim(QProcess &sim, const QStringList &arguments)
    {
        sim.start(QStringLiteral(CORVANE_SIM_EXE), QStringList{"--tcp", "0"} + arguments);
        if (!sim.waitForStarted(5000))
            return {};
        while (!sim.canReadLine() && sim.waitForReadyRead(5000)) {
        }
        return QRegularExpression(QStringLiteral("tcp 127\\.0\\.0\\.1:(\\d+)"))
            .match(sim.readLine())
            .captured(1);
    }

    static bool writeFile(const QString &path, const QByteArray &content)
    {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
    }

    static void startMonitor(QProcess &monitor, const QTemporaryDir &folder, quint16 broker,
                             const QString &root)
    {
        monitor.setProcessEnvironment(headlessEnvironment(QDir(folder.path())));
        monitor.start(QStringLiteral(CORVANE_MONITOR_EXE),
                      {"--headless", "--data-dir", folder.path(), "--mqtt",
                       QStringLiteral("mqtt://127.0.0.1:%1/%2").arg(broker).arg(root)});
    }

    // corvane-spc on the database dsn; its standard output, nothing when it failed.
    static std::optional<QByteArray> spc(const QString &dsn, const QStringList &arguments,
                                         const QByteArray &input = {})
    {
        QProcess tool;
        tool.start(QStringLiteral(CORVANE_SPC_EXE), QStringList(arguments) << "--dsn" << dsn);
        tool.write(input);
        tool.closeWriteChannel();
        if (!tool.waitForFinished(20000) || tool.exitCode() != 0) {
            qWarning() << arguments << tool.readAllStandardError();
            return std::nullopt;
        }
        return tool.readAllStandardOutput();
    }

    static quint16 brokerPort()
    {
        return quint16(qEnvironmentVariableIntValue("CORVANE_TEST_MQTT_PORT"));
    }

private slots:
    void weldMessagesEqualTheDataLogAndTheWillMarksAKill()
    {
        const quint16 broker = brokerPort();
        if (broker == 0)
            QSKIP("CORVANE_TEST_MQTT_PORT is not set; run under scripts/with-mosquitto.sh");
        constexpr int kWelds = 25;
        QTemporaryDir folder;
        const QString root =
            QStringLiteral("t") + QString::number(QCoreApplication::applicationPid());
        MqttSubscriber subscriber(broker, root + QStringLiteral("/#"));
        QVERIFY(subscriber.waitSubscribed());

        QProcess sim;
        const QString port = startSim(
            sim, {"--count", QString::number(kWelds), "--interval", "20", "--seed", "11", "--us"});
        QVERIFY(!port.isEmpty());

        const QString dataLog = folder.filePath(QStringLiteral("press.txt"));
        QVERIFY(writeFile(folder.filePath(QStringLiteral("corvane-monitor.cfg")),
                          QStringLiteral("<Configurations><Configuration><Equipment "
                                         "Name=\"Line 2/Press #1\" Settings=\"IP:127.0.0.1:%1\"/>"
                                         "<DataLogging Enable=\"1\" File=\"%2\"/>"
                                         "</Configuration></Configurations>")
                              .arg(port, dataLog)
                              .toUtf8()));
        QVERIFY(writeFile(folder.filePath(QStringLiteral("corvane-monitor.ini")),
                          "[PREFERENCES]\nMEASUREMENT_SYSTEM=1\n"));

        QProcess monitor;
        startMonitor(monitor, folder, broker, root);
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

        // A monitor that vanishes without a word: the broker publishes its last will.
        monitor.kill();
        QTRY_COMPARE_WITH_TIMEOUT(subscriber.payloads(root + QStringLiteral("/status")).last(),
                                  "offline", 60000);
    }

    // Limits frozen on a baseline, then a welder whose energy moved: every subgroup the
    // monitor stores is published with the rows the database holds, and the first one
    // breaks rule 1 with its mean above the upper limit.
    void subgroupMessagesEqualTheDatabaseAndARuleViolationIsPublished()
    {
        const quint16 broker = brokerPort();
        if (broker == 0)
            QSKIP("CORVANE_TEST_MQTT_PORT is not set; run under scripts/with-mosquitto.sh");
        QTemporaryDir folder;
        const QString dsn = folder.filePath(QStringLiteral("plant.db"));
        QVERIFY(spc(dsn, {"import", "-"}, spcBaselineReport()));
        QVERIFY(spc(dsn, {"freeze-limits", "--part", "Housing", "--process", "Seal weld", "--test",
                          "Energy", "--baseline", "10"}));
        const QString root =
            QStringLiteral("s") + QString::number(QCoreApplication::applicationPid());
        MqttSubscriber subscriber(broker, root + QStringLiteral("/#"));
        QVERIFY(subscriber.waitSubscribed());

        QProcess sim;
        const QString port =
            startSim(sim, {"--count", "12", "--interval", "150", "--seed", "5", "--energy", "800"});
        QVERIFY(!port.isEmpty());
        QVERIFY(writeFile(
            folder.filePath(QStringLiteral("corvane-monitor.cfg")),
            QStringLiteral("<Configurations><Configuration>"
                           "<Equipment Name=\"Press 1\" Settings=\"IP:127.0.0.1:%1\"/>"
                           "<Sampling Enabled=\"True\" SamplingPeriod=\"1\" CollectionType=\"1\" "
                           "SubgroupSize=\"5\" EnableAlarmLogging=\"True\" LogAlarms=\"127\">"
                           "<Database DSN=\"%2\"/><Part Name=\"Housing\" Reselect=\"False\"/>"
                           "<Process Name=\"Seal weld\"/></Sampling>"
                           "</Configuration></Configurations>")
                .arg(port, dsn)
                .toUtf8()));
        QProcess monitor;
        startMonitor(monitor, folder, broker, root);
        const auto cleanUp = qScopeGuard([&] {
            monitor.kill();
            sim.kill();
            monitor.waitForFinished(5000);
            sim.waitForFinished(5000);
        });
        const QString topic = root + QStringLiteral("/Press 1/");
        QTRY_VERIFY_WITH_TIMEOUT(subscriber.payloads(topic + "subgroup").size() >= 2, 30000);
        QVERIFY(!subscriber.payloads(topic + "rule").isEmpty());
        // A clean end stores and publishes the period so far as well.
        monitor.terminate();
        QVERIFY(monitor.waitForFinished(10000));

        // Both sides as rows of the database's report, less the subgroup's number.
        const auto row = [](const QStringList &fields) {
            return QStringList{QString::number(
                       QDateTime::fromString(fields[0], Qt::ISODateWithMs).toMSecsSinceEpoch())} +
                   fields.mid(1);
        };
        QList<QStringList> published;
        QHash<QString, double> energyMeans;
        for (const QByteArray &payload : subscriber.payloads(topic + "subgroup")) {
            const QJsonObject subgroup = QJsonDocument::fromJson(payload).object();
            QCOMPARE(subgroup.value("queued").toBool(true), false);
            for (const QJsonValue &itemValue : subgroup.value("testItems").toArray()) {
                const QJsonObject item = itemValue.toObject();
                double sum = 0;
                const QJsonArray values = item.value("values").toArray();
                for (const QJsonValue &value : values) {
                    const QJsonObject v = value.toObject();
                    sum += v.value("value").toDouble();
                    published.append(row(
                        {subgroup.value("dateTime").toString(),
                         subgroup.value("partGroup").toString(), subgroup.value("part").toString(),
                         subgroup.value("processGroup").toString(),
                         subgroup.value("process").toString(),
                         subgroup.value("sourceTag").toString(),
                         QString::number(subgroup.value("valueCount").toInt()),
                         item.value("name").toString(), QString::number(item.value("kind").toInt()),
                         QString::number(v.value("sample").toInt()),
                         QString::number(v.value("value").toDouble(), 'g', 17),
                         v.value("text").toString()}));
                }
                if (item.value("name").toString() == u"Energy")
                    energyMeans.insert(subgroup.value("dateTime").toString(), sum / values.size());
            }
        }
        QList<QStringList> stored;
        const std::optional<QByteArray> report =
            spc(dsn, {"subgroups", "--part", "Housing", "--since", "2026-11-02", "--csv"});
        QVERIFY(report);
        for (const QString &line : QString::fromUtf8(*report).trimmed().split(u'\n').mid(1)) {
            QVERIFY2(!line.contains(u'"'), qPrintable(line));
            QStringList fields = line.trimmed().split(u',').mid(1);
            fields[10] = QString::number(QLocale::c().toDouble(fields[10]), 'g', 17);
            stored.append(row(fields));
        }
        QVERIFY(energyMeans.size() >= 2);
        QCOMPARE(published, stored);

        const QJsonObject rule =
            QJsonDocument::fromJson(subscriber.payloads(topic + "rule").first()).object();
        QCOMPARE(rule.value("characteristic").toString(), QStringLiteral("Energy"));
        QCOMPARE(rule.value("rule").toInt(), 1);
        QCOMPARE(rule.value("chart").toString(), QStringLiteral("mean"));
        QCOMPARE(rule.value("text").toString(),
                 QStringLiteral("Energy - Rule 1: one point beyond 3 sigma"));
        QVERIFY(energyMeans.contains(rule.value("subgroupTime").toString()));
        QCOMPARE(rule.value("value").toDouble(),
                 energyMeans.value(rule.value("subgroupTime").toString()));
        QVERIFY(rule.value("lowerLimit").toDouble() < rule.value("centre").toDouble());
        QVERIFY(rule.value("upperLimit").toDouble() < rule.value("value").toDouble());
    }
};

QTEST_GUILESS_MAIN(TestHeadlessMqtt)
#include "tst_headless_mqtt.moc"

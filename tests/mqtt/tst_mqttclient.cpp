#include "MosquittoBroker.h"

#include "mqtt/MqttClient.h"
#include "platform/Clock.h"
#include "platform/EventLog.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

// The client against a real broker: what waits in its queue while the broker is away,
// and a TLS connection with a throwaway certificate.
class TestMqttClient : public QObject
{
    Q_OBJECT

private:
    static MqttSettings settingsFor(quint16 port, int queueLimit = 1000)
    {
        MqttSettings settings;
        settings.host = QStringLiteral("127.0.0.1");
        settings.port = port;
        settings.clientId = QStringLiteral("corvane-test");
        settings.topicRoot = QStringLiteral("plant");
        settings.queueLimit = queueLimit;
        return settings;
    }

    static QList<QByteArray> numbers(int from, int to)
    {
        QList<QByteArray> list;
        for (int i = from; i <= to; ++i)
            list.append(QByteArray::number(i));
        return list;
    }

    SystemClock m_clock;

private slots:
    // The restarted broker also still holds the client's session: under MQTT 3.1.1 because
    // clean session is off, under MQTT 5 because the connect asks for a session expiry.
    void brokerRestartLosesNothingWithinTheBound_data()
    {
        QTest::addColumn<MqttSettings::Protocol>("protocol");
        QTest::newRow("3.1.1") << MqttSettings::Protocol::V311;
        QTest::newRow("5") << MqttSettings::Protocol::V5;
    }

    void brokerRestartLosesNothingWithinTheBound()
    {
        QFETCH(MqttSettings::Protocol, protocol);
        QTemporaryDir folder;
        EventLog eventLog(folder.filePath("events.log"), m_clock);
        MosquittoBroker broker;
        QVERIFY(broker.start());
        MqttSubscriber subscriber(broker.port(), QStringLiteral("plant/#"));
        QVERIFY(subscriber.waitSubscribed());

        MqttSettings settings = settingsFor(broker.port(), 20);
        settings.protocol = protocol;
        MqttClient client(settings, eventLog);
        client.start();
        QTRY_COMPARE(client.state(), MqttClient::State::Connected);
        QVERIFY(!client.sessionResumed());
        const QString topic = QStringLiteral("plant/Press 1/weld");
        for (const QByteArray &n : numbers(1, 50))
            client.publish(topic, n);
        QTRY_COMPARE(subscriber.payloads(topic), numbers(1, 50));

        // Lets the broker take the subscriber's acknowledgements first: a broker stopped
        // before them delivers those messages to it again after the restart.
        QTest::qWait(300);
        broker.stop();
        QTRY_COMPARE(client.state(), MqttClient::State::Disconnected);
        // 30 messages into a queue of 20: the ten oldest give way.
        for (const QByteArray &n : numbers(51, 80))
            client.publish(topic, n);
        QCOMPARE(client.queuedCount(), 20);
        QVERIFY(broker.start());
        QTRY_COMPARE_WITH_TIMEOUT(client.state(), MqttClient::State::Connected, 15000);
        QVERIFY(client.sessionResumed());
        QTRY_COMPARE_WITH_TIMEOUT(subscriber.payloads(topic), numbers(1, 50) + numbers(61, 80),
                                  15000);

        // One line for the loss and one for the return, not one per retry.
        QFile log(eventLog.path());
        QVERIFY(log.open(QIODevice::ReadOnly));
        const QList<QByteArray> lines = log.readAll().trimmed().split('\n');
        QCOMPARE(lines.size(), 2);
        QVERIFY2(lines[0].contains("Broker connection lost"), lines[0]);
        QVERIFY2(lines[1].contains("10 message(s) dropped"), lines[1]);
        QCOMPARE(subscriber.payloads(QStringLiteral("plant/status")).last(), "online");
    }

    void tlsWithThrowawayCertificate()
    {
        QTemporaryDir folder;
        const QString cert = folder.filePath("broker.crt");
        const QString key = folder.filePath("broker.key");
        QProcess openssl;
        openssl.start(QStringLiteral("openssl"),
                      {"req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "1", "-subj",
                       "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1", "-keyout", key,
                       "-out", cert});
        QVERIFY(openssl.waitForFinished(30000));
        QCOMPARE(openssl.exitCode(), 0);

        EventLog eventLog(folder.filePath("events.log"), m_clock);
        MosquittoBroker broker(cert, key);
        QVERIFY(broker.start());
        MqttSubscriber subscriber(broker.port(), QStringLiteral("plant/#"), {"--cafile", cert});
        QVERIFY(subscriber.waitSubscribed());

        MqttSettings settings = settingsFor(broker.port());
        settings.tls = true;
        settings.caFile = cert;
        MqttClient client(settings, eventLog);
        client.start();
        client.publish(QStringLiteral("plant/x/weld"), "sealed");
        QTRY_COMPARE(subscriber.payloads(QStringLiteral("plant/x/weld")),
                     QList<QByteArray>{"sealed"});
        QCOMPARE(subscriber.payloads(QStringLiteral("plant/status")), QList<QByteArray>{"online"});
    }
};

QTEST_GUILESS_MAIN(TestMqttClient)
#include "tst_mqttclient.moc"

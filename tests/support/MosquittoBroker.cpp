#include "MosquittoBroker.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTcpSocket>
#include <QTest>
#include <QUuid>

MosquittoBroker::MosquittoBroker(QString certFile, QString keyFile)
    : m_certFile(std::move(certFile))
    , m_keyFile(std::move(keyFile))
{
    m_process.setProcessChannelMode(QProcess::MergedChannels);
}

MosquittoBroker::~MosquittoBroker()
{
    stop();
}

bool MosquittoBroker::start()
{
    // A port that is free now may be taken before the broker binds it: try a few.
    for (int attempt = 0; attempt < 8; ++attempt) {
        if (m_port == 0 || attempt > 0)
            m_port = quint16(20000 + QRandomGenerator::global()->bounded(40000));
        QByteArray config = "listener " + QByteArray::number(m_port) +
                            " 127.0.0.1\nallow_anonymous true\npersistence true\n"
                            // Started by root, the broker would switch to its own user,
                            // which may not enter the private temporary folder.
                            "user root\n"
                            "persistence_location " +
                            m_folder.path().toUtf8() + "/\n";
        if (!m_certFile.isEmpty())
            config += "certfile " + m_certFile.toUtf8() + "\nkeyfile " + m_keyFile.toUtf8() + "\n";
        QFile file(m_folder.filePath(QStringLiteral("mosquitto.conf")));
        if (!file.open(QIODevice::WriteOnly) || file.write(config) != config.size())
            return false;
        file.close();
        m_process.start(QStringLiteral("/usr/sbin/mosquitto"), {"-c", file.fileName()});
        const bool listening = QTest::qWaitFor(
            [&] {
                QTcpSocket probe;
                probe.connectToHost(QStringLiteral("127.0.0.1"), m_port);
                return m_process.state() == QProcess::Running && probe.waitForConnected(100);
            },
            5000);
        if (listening)
            return true;
        stop();
    }
    return false;
}

void MosquittoBroker::stop()
{
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.terminate();
    if (!m_process.waitForFinished(5000))
        m_process.kill();
    m_process.waitForFinished(5000);
}

MqttSubscriber::MqttSubscriber(quint16 port, const QString &topicFilter,
                               const QStringList &extraArguments)
{
    const QString id = QUuid::createUuid().toString(QUuid::Id128).left(20);
    // Line-buffered through stdbuf: to a pipe, mosquitto_sub would hold its lines back.
    m_process.start(QStringLiteral("stdbuf"),
                    QStringList{"-oL", "mosquitto_sub", "-h", "127.0.0.1", "-p",
                                QString::number(port), "-t", topicFilter, "-q", "1", "-c", "-i", id,
                                "-v", "-d"} +
                        extraArguments);
}

MqttSubscriber::~MqttSubscriber()
{
    m_process.kill();
    m_process.waitForFinished(5000);
}

bool MqttSubscriber::waitSubscribed()
{
    // -d reports the broker's SUBACK on standard output.
    return QTest::qWaitFor(
        [&] {
            m_received += m_process.readAllStandardOutput();
            return m_received.contains("Client") && m_received.contains("SUBACK");
        },
        5000);
}

QList<QByteArray> MqttSubscriber::payloads(const QString &topic)
{
    m_received += m_process.readAllStandardOutput();
    const QByteArray prefix = topic.toUtf8() + ' ';
    QList<QByteArray> found;
    // Only whole lines: the last one may still be on its way.
    for (const QByteArray &line : m_received.left(m_received.lastIndexOf('\n')).split('\n')) {
        if (line.startsWith(prefix))
            found.append(line.mid(prefix.size()));
    }
    return found;
}

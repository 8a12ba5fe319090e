#pragma once

#include <QByteArray>
#include <QList>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

// A real mosquitto broker of the test's own on a loopback port, for the cases that stop
// and restart it or give it TLS files. It keeps its store in a temporary folder, so a
// restarted broker still holds the sessions of persistent subscribers.
class MosquittoBroker
{
public:
    // With certFile and keyFile the listener speaks TLS only.
    explicit MosquittoBroker(QString certFile = {}, QString keyFile = {});
    ~MosquittoBroker();

    // Starts (or restarts) the broker on the same port; false when it did not listen.
    bool start();
    // SIGTERM, which also writes the store.
    void stop();
    quint16 port() const { return m_port; }

private:
    QTemporaryDir m_folder;
    QProcess m_process;
    QString m_certFile;
    QString m_keyFile;
    quint16 m_port = 0;
};

// mosquitto_sub as a QoS 1 subscriber with a persistent session: collects "topic payload"
// lines, and after a broker restart receives what was published while it was away.
class MqttSubscriber
{
public:
    // extraArguments: such as --cafile for a TLS broker.
    MqttSubscriber(quint16 port, const QString &topicFilter,
                   const QStringList &extraArguments = {});
    ~MqttSubscriber();

    // Waits until the broker has registered the subscription.
    bool waitSubscribed();
    // The payloads received on topic so far, in order.
    QList<QByteArray> payloads(const QString &topic);

private:
    QProcess m_process;
    QByteArray m_received;
};

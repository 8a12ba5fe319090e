#pragma once

#include "MqttSettings.h"

#include <QByteArray>
#include <QHash>
#include <QLoggingCategory>
#include <QObject>
#include <QString>
#include <QTimer>

#include <deque>
#include <memory>

class EventLog;
class QSocketNotifier;
class QThread;
struct mosquitto;

Q_DECLARE_LOGGING_CATEGORY(lcMqtt)

// The connection of one program to the plant's MQTT broker, run from the Qt event loop:
// the client's socket sits on socket notifiers and its keep-alive on a timer, so a
// publish only appends to a queue and never waits for the network.
//
// The name lookup and the start of each connection run on a worker thread, so that a slow
// name server or an unreachable host never holds up the capture; the socket comes to the
// event loop once the connection is under way.
//
// Every message goes with QoS 1 and a persistent session (clean session off; with MQTT 5
// the session outlives the connection by a day). While the
// broker is away, messages wait in memory up to the configured bound, the oldest
// dropped first; after the reconnect they go out in order, and the number dropped is
// written to the event log. The broker's last will marks the status topic "offline"
// when this program vanishes; "online" is published, retained, at every connect.
class MqttClient : public QObject
{
    Q_OBJECT

public:
    enum class State { Connecting, Connected, Disconnected };

    MqttClient(MqttSettings settings, EventLog &eventLog, QObject *parent = nullptr);
    ~MqttClient() override;

    // Starts connecting; from then on the client reconnects by itself with back-off.
    void start();
    // Queues one message. A retained message is also sent again at every reconnect, so
    // that a late subscriber finds the present state even after a broker restart.
    void publish(const QString &topic, const QByteArray &payload, bool retained = false);
    // The same with the topic in UTF-8, for a sender that keeps its topics.
    void publish(const QByteArray &topic, const QByteArray &payload, bool retained = false);
    // Marks the status "offline", delivers what is queued within timeoutMs and
    // disconnects cleanly. Blocks: meant for the end of the program.
    void finish(int timeoutMs);

    State state() const { return m_state; }
    QString stateText() const;
    const MqttSettings &settings() const { return m_settings; }
    qsizetype queuedCount() const { return qsizetype(m_queue.size()); }
    qint64 droppedCount() const { return m_droppedTotal; }
    // Messages the broker has acknowledged.
    qint64 deliveredCount() const { return m_delivered; }
    // The broker still held this client's session at the last connect.
    bool sessionResumed() const { return m_sessionResumed; }

signals:
    void stateChanged(MqttClient::State state);

private:
    struct Message
    {
        QByteArray topic;
        QByteArray payload;
        bool retained;
    };

    static void onConnect(mosquitto *, void *self, int result, int flags);
    static void onDisconnect(mosquitto *, void *self, int result);
    static void onPublish(mosquitto *, void *self, int mid);

    void connectToBroker();
    void connectStarted(int result, const QString &reason);
    // Waits for the connect thread; false when it is still at work and keeps the handle.
    bool endConnectThread(int timeoutMs);
    void connected(int result, bool sessionPresent);
    void connectionLost(int result, const QString &reason = {});
    void scheduleReconnect();
    void watchSocket();
    void dropSocketWatch();
    void readSocket();
    void writeSocket();
    void housekeeping();
    // What the client asked for since the last call: pump the queue and watch for write.
    void afterLoop(int result);
    void pump();
    bool send(const Message &message);
    void setState(State state);

    MqttSettings m_settings;
    EventLog &m_eventLog;
    mosquitto *m_mosq = nullptr;
    State m_state = State::Disconnected;
    bool m_everConnected = false;
    bool m_lossReported = false;
    bool m_finishing = false;
    bool m_sessionResumed = false;
    int m_retryDelayMs;
    // Starts the connection: owns the client library's handle until it ends.
    QThread *m_connectThread = nullptr;

    std::unique_ptr<QSocketNotifier> m_readNotifier;
    std::unique_ptr<QSocketNotifier> m_writeNotifier;
    QTimer m_housekeeping;
    QTimer m_reconnect;

    std::deque<Message> m_queue;
    QHash<QByteArray, QByteArray> m_retained;
    int m_inFlight = 0;
    qint64 m_droppedSinceLoss = 0;
    qint64 m_droppedTotal = 0;
    qint64 m_delivered = 0;
};

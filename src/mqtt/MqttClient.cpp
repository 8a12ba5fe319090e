#include "MqttClient.h"

#include "MqttTopics.h"

#include "platform/EventLog.h"

#include <QElapsedTimer>
#include <QSet>
#include <QSocketNotifier>
#include <QThread>

#include <mosquitto.h>
#include <mqtt_protocol.h>

#include <memory>
#include <mutex>

Q_LOGGING_CATEGORY(lcMqtt, "corvane.mqtt")

namespace {

constexpr int kQos = 1;
constexpr int kKeepAliveSeconds = 30;
constexpr int kFirstRetryMs = 1000;
constexpr int kLongestRetryMs = 30000;
constexpr int kHousekeepingMs = 100;
// How long the end of a client waits for a connection that is still starting.
constexpr int kFinishConnectMs = 3000;
// Messages handed to the client library and not yet acknowledged. The rest wait in our
// own queue, where the bound and the count of dropped messages apply. The library walks
// its list of unacknowledged messages at every publish and every acknowledgement, so a
// wider window costs time per message; 300 still covers 15 ms of round trip at 20,000
// messages a second.
constexpr int kInFlightWindow = 300;
constexpr int kPacketsPerRead = 1000;
// How long an MQTT 5 broker keeps our session after the connection ends: long enough for
// a network outage or a restart of the workstation, short enough that a retired one does
// not occupy the broker for good.
constexpr int kSessionExpirySeconds = 24 * 3600;

const QString kEventArea = QStringLiteral("MQTT");

void initialiseLibrary()
{
    static std::once_flag once;
    std::call_once(once, [] { mosquitto_lib_init(); });
}

struct ConnectOutcome
{
    int result = MOSQ_ERR_SUCCESS;
    QString reason;
};

// Looks the host up, opens the TCP connection and sends CONNECT; blocks while it does, so
// it runs on the connect thread. The library keeps the CONNECT properties for later
// reconnects as well.
ConnectOutcome startConnection(mosquitto *mosq, const QByteArray &host, int port, bool v5)
{
    mosquitto_property *properties = nullptr;
    if (v5)
        mosquitto_property_add_int32(&properties, MQTT_PROP_SESSION_EXPIRY_INTERVAL,
                                     kSessionExpirySeconds);
    const int result = mosquitto_connect_bind_v5(mosq, host.constData(), port, kKeepAliveSeconds,
                                                 nullptr, properties);
    mosquitto_property_free_all(&properties);
    // A failed system call leaves its reason in this thread's errno.
    return {result, QString::fromUtf8(mosquitto_strerror(result))};
}

} // namespace

MqttClient::MqttClient(MqttSettings settings, EventLog &eventLog, QObject *parent)
    : QObject(parent)
    , m_settings(std::move(settings))
    , m_eventLog(eventLog)
    , m_retryDelayMs(kFirstRetryMs)
{
    m_housekeeping.setInterval(kHousekeepingMs);
    connect(&m_housekeeping, &QTimer::timeout, this, &MqttClient::housekeeping);
    m_reconnect.setSingleShot(true);
    connect(&m_reconnect, &QTimer::timeout, this, &MqttClient::connectToBroker);
}

MqttClient::~MqttClient()
{
    dropSocketWatch();
    endConnectThread(kFinishConnectMs);
    if (m_mosq)
        mosquitto_destroy(m_mosq);
}

void MqttClient::start()
{
    initialiseLibrary();
    m_mosq = mosquitto_new(m_settings.clientId.toUtf8().constData(), false, this);
    if (!m_mosq) {
        qCWarning(lcMqtt) << "cannot create the MQTT client";
        return;
    }
    mosquitto_int_option(m_mosq, MOSQ_OPT_PROTOCOL_VERSION,
                         m_settings.protocol == MqttSettings::Protocol::V5 ? MQTT_PROTOCOL_V5
                                                                           : MQTT_PROTOCOL_V311);
    mosquitto_int_option(m_mosq, MOSQ_OPT_SEND_MAXIMUM, kInFlightWindow);
    mosquitto_max_inflight_messages_set(m_mosq, kInFlightWindow);
    if (!m_settings.user.isEmpty()) {
        const QByteArray password = m_settings.password.toUtf8();
        mosquitto_username_pw_set(m_mosq, m_settings.user.toUtf8().constData(),
                                  m_settings.password.isEmpty() ? nullptr : password.constData());
    }
    if (m_settings.tls) {
        const QByteArray ca = m_settings.caFile.toLocal8Bit();
        const QByteArray cert = m_settings.certFile.toLocal8Bit();
        const QByteArray key = m_settings.keyFile.toLocal8Bit();
        const int result = mosquitto_tls_set(m_mosq, ca.isEmpty() ? nullptr : ca.constData(),
                                             nullptr, cert.isEmpty() ? nullptr : cert.constData(),
                                             key.isEmpty() ? nullptr : key.constData(), nullptr);
        if (result != MOSQ_ERR_SUCCESS) {
            // Without the files there is no safe connection: say so once and never try.
            m_eventLog.WriteEventLog(kEventArea, QStringLiteral("TLS files refused"), result,
                                     QString::fromUtf8(mosquitto_strerror(result)),
                                     m_settings.caFile);
            return;
        }
    }
    const QByteArray statusTopic = MqttTopics::status(m_settings.topicRoot).toUtf8();
    mosquitto_will_set(m_mosq, statusTopic.constData(), 7, "offline", kQos, true);
    mosquitto_connect_with_flags_callback_set(m_mosq, &MqttClient::onConnect);
    mosquitto_disconnect_callback_set(m_mosq, &MqttClient::onDisconnect);
    mosquitto_publish_callback_set(m_mosq, &MqttClient::onPublish);
    m_housekeeping.start();
    connectToBroker();
}

void MqttClient::publish(const QString &topic, const QByteArray &payload, bool retained)
{
    publish(topic.toUtf8(), payload, retained);
}

void MqttClient::publish(const QByteArray &topic, const QByteArray &payload, bool retained)
{
    if (retained)
        m_retained.insert(topic, payload);
    if (qsizetype(m_queue.size()) >= m_settings.queueLimit) {
        m_queue.pop_front();
        ++m_droppedSinceLoss;
        ++m_droppedTotal;
    }
    m_queue.push_back({topic, payload, retained});
    if (m_state == State::Connected && m_inFlight < kInFlightWindow)
        afterLoop(MOSQ_ERR_SUCCESS);
}

void MqttClient::finish(int timeoutMs)
{
    if (!m_mosq)
        return;
    m_finishing = true;
    m_reconnect.stop();
    m_housekeeping.stop();
    if (!endConnectThread(timeoutMs))
        return;
    publish(MqttTopics::status(m_settings.topicRoot), "offline", true);
    QElapsedTimer elapsed;
    elapsed.start();
    while (m_state == State::Connected && (!m_queue.empty() || m_inFlight > 0) &&
           elapsed.elapsed() < timeoutMs) {
        afterLoop(mosquitto_loop(m_mosq, 50, kPacketsPerRead));
    }
    const qsizetype undelivered = qsizetype(m_queue.size()) + m_inFlight;
    if (undelivered > 1) {
        m_eventLog.WriteEventLog(kEventArea, QStringLiteral("Messages not delivered at exit"),
                                 int(undelivered), QStringLiteral("broker unreachable or slow"),
                                 m_settings.brokerText());
    }
    dropSocketWatch();
    if (m_state == State::Connected) {
        mosquitto_disconnect(m_mosq);
        mosquitto_loop(m_mosq, 50, 1);
    }
    setState(State::Disconnected);
}

QString MqttClient::stateText() const
{
    switch (m_state) {
    case State::Connecting:
        return QStringLiteral("MQTT: connecting to %1").arg(m_settings.brokerText());
    case State::Connected:
        return QStringLiteral("MQTT: connected to %1").arg(m_settings.brokerText());
    case State::Disconnected:
        if (m_finishing)
            return QStringLiteral("MQTT: disconnected from %1").arg(m_settings.brokerText());
        return QStringLiteral("MQTT: %1 unreachable, %2 queued")
            .arg(m_settings.brokerText())
            .arg(m_queue.size());
    }
    return {};
}

// ---- Connection ----------------------------------------------------------------------

void MqttClient::connectToBroker()
{
    setState(State::Connecting);
    dropSocketWatch();
    auto outcome = std::make_shared<ConnectOutcome>();
    QThread *thread = QThread::create(
        [mosq = m_mosq, host = m_settings.host.toUtf8(), port = int(m_settings.port),
         v5 = m_settings.protocol == MqttSettings::Protocol::V5,
         outcome] { *outcome = startConnection(mosq, host, port, v5); });
    m_connectThread = thread;
    connect(thread, &QThread::finished, this, [this, thread, outcome] {
        // A client at its end may have waited for the thread already.
        if (thread != m_connectThread)
            return;
        m_connectThread = nullptr;
        thread->deleteLater();
        connectStarted(outcome->result, outcome->reason);
    });
    thread->start();
}

void MqttClient::connectStarted(int result, const QString &reason)
{
    if (result != MOSQ_ERR_SUCCESS) {
        connectionLost(result, reason);
        return;
    }
    watchSocket();
    afterLoop(MOSQ_ERR_SUCCESS);
}

bool MqttClient::endConnectThread(int timeoutMs)
{
    if (!m_connectThread)
        return true;
    QThread *thread = std::exchange(m_connectThread, nullptr);
    if (thread->wait(timeoutMs)) {
        delete thread;
        return true;
    }
    // A host that does not answer holds the thread in the system's connect for up to
    // minutes. The thread keeps the handle and ends with the program.
    qCWarning(lcMqtt) << "connection to" << m_settings.brokerText() << "still starting at exit";
    m_mosq = nullptr;
    setState(State::Disconnected);
    return false;
}

void MqttClient::onConnect(mosquitto *, void *self, int result, int flags)
{
    static_cast<MqttClient *>(self)->connected(result, flags & 1);
}

void MqttClient::onDisconnect(mosquitto *, void *self, int result)
{
    static_cast<MqttClient *>(self)->connectionLost(result);
}

void MqttClient::onPublish(mosquitto *, void *self, int)
{
    auto *client = static_cast<MqttClient *>(self);
    // Messages sent again after a reconnect were counted out of the window at the loss.
    client->m_inFlight = qMax(0, client->m_inFlight - 1);
    ++client->m_delivered;
}

void MqttClient::connected(int result, bool sessionPresent)
{
    if (result != 0) {
        // A refusal (bad credentials, client id) ends in a disconnect, handled there.
        qCWarning(lcMqtt) << "broker refused the connection:" << mosquitto_connack_string(result);
        return;
    }
    m_retryDelayMs = kFirstRetryMs;
    m_sessionResumed = sessionPresent;
    if (m_lossReported) {
        m_eventLog.WriteEventLog(kEventArea, QStringLiteral("Broker connection restored"),
                                 int(qMin<qint64>(m_droppedSinceLoss, INT_MAX)),
                                 QStringLiteral("%1 message(s) dropped while the broker was away")
                                     .arg(m_droppedSinceLoss),
                                 m_settings.brokerText());
    }
    m_everConnected = true;
    m_lossReported = false;
    m_droppedSinceLoss = 0;
    setState(State::Connected);
    // The present state first: "online" and the last retained message of every topic,
    // which a broker that restarted without its store has forgotten.
    // A topic whose newer message still waits in the queue gets that one in its turn.
    send({MqttTopics::status(m_settings.topicRoot).toUtf8(), "online", true});
    QSet<QByteArray> waiting;
    for (const Message &message : m_queue) {
        if (message.retained)
            waiting.insert(message.topic);
    }
    for (auto it = m_retained.cbegin(); it != m_retained.cend(); ++it) {
        if (!waiting.contains(it.key()))
            send({it.key(), it.value(), true});
    }
}

void MqttClient::connectionLost(int result, const QString &reason)
{
    if (m_state == State::Disconnected)
        return;
    setState(State::Disconnected);
    // Messages the library holds unacknowledged stay with it and go again after the
    // reconnect; only the window for new ones opens afresh.
    m_inFlight = 0;
    if (m_finishing)
        return;
    if (!m_lossReported) {
        m_lossReported = true;
        m_eventLog.WriteEventLog(
            kEventArea,
            m_everConnected ? QStringLiteral("Broker connection lost")
                            : QStringLiteral("Broker unreachable"),
            result, reason.isEmpty() ? QString::fromUtf8(mosquitto_strerror(result)) : reason,
            m_settings.brokerText());
    }
    scheduleReconnect();
}

void MqttClient::scheduleReconnect()
{
    // The notifiers may be the ones that reported the loss: they go once their event ends.
    for (auto *notifier : {&m_readNotifier, &m_writeNotifier}) {
        if (*notifier) {
            (*notifier)->setEnabled(false);
            notifier->release()->deleteLater();
        }
    }
    m_reconnect.start(m_retryDelayMs);
    m_retryDelayMs = qMin(m_retryDelayMs * 2, kLongestRetryMs);
}

// ---- Socket --------------------------------------------------------------------------

void MqttClient::watchSocket()
{
    dropSocketWatch();
    const int socket = mosquitto_socket(m_mosq);
    if (socket < 0)
        return;
    m_readNotifier = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Read);
    connect(m_readNotifier.get(), &QSocketNotifier::activated, this, &MqttClient::readSocket);
    m_writeNotifier = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Write);
    connect(m_writeNotifier.get(), &QSocketNotifier::activated, this, &MqttClient::writeSocket);
}

void MqttClient::dropSocketWatch()
{
    m_readNotifier.reset();
    m_writeNotifier.reset();
}

void MqttClient::readSocket()
{
    afterLoop(mosquitto_loop_read(m_mosq, kPacketsPerRead));
}

void MqttClient::writeSocket()
{
    afterLoop(mosquitto_loop_write(m_mosq, kPacketsPerRead));
}

void MqttClient::housekeeping()
{
    // While the connect thread works, the handle is its own.
    if (m_state == State::Disconnected || m_connectThread)
        return;
    // Keep-alive pings, and records that TLS decoded ahead of the socket's signal.
    int result = mosquitto_loop_misc(m_mosq);
    if (result == MOSQ_ERR_SUCCESS && m_readNotifier)
        result = mosquitto_loop_read(m_mosq, kPacketsPerRead);
    afterLoop(result);
}

void MqttClient::afterLoop(int result)
{
    if (result == MOSQ_ERR_NO_CONN || result == MOSQ_ERR_CONN_LOST) {
        connectionLost(result);
        return;
    }
    pump();
    if (m_writeNotifier)
        m_writeNotifier->setEnabled(mosquitto_want_write(m_mosq));
}

void MqttClient::pump()
{
    while (m_state == State::Connected && m_inFlight < kInFlightWindow && !m_queue.empty()) {
        if (!send(m_queue.front()))
            return;
        m_queue.pop_front();
    }
}

bool MqttClient::send(const Message &message)
{
    const int result =
        mosquitto_publish(m_mosq, nullptr, message.topic.constData(), int(message.payload.size()),
                          message.payload.constData(), kQos, message.retained);
    switch (result) {
    case MOSQ_ERR_SUCCESS:
    case MOSQ_ERR_ERRNO:
    case MOSQ_ERR_CONN_LOST:
        // The library holds the message from here on, also when the write failed: it
        // sends it again after the reconnect.
        ++m_inFlight;
        return true;
    case MOSQ_ERR_NO_CONN:
        return false;
    default:
        qCWarning(lcMqtt) << "message to" << message.topic
                          << "refused:" << mosquitto_strerror(result);
        return true;
    }
}

void MqttClient::setState(State state)
{
    if (state == m_state)
        return;
    m_state = state;
    emit stateChanged(state);
}

#pragma once

#include <QString>

// Where and how a monitor publishes to the plant's MQTT broker. Program-wide: read from
// the [MQTT] section of the preferences file, and for a headless run overridden by
// --mqtt URL. The password never comes from either: it is taken from the environment
// (CORVANE_MQTT_PASSWORD) or from a file that only its owner may read.
struct MqttSettings
{
    static constexpr int kDefaultQueueLimit = 100000;
    static constexpr quint16 kDefaultPort = 1883;
    static constexpr quint16 kDefaultTlsPort = 8883;

    enum class Protocol { V311, V5 };

    // Empty: nothing is published and the client library is never loaded.
    QString host;
    quint16 port = kDefaultPort;
    bool tls = false;
    QString caFile;
    QString certFile;
    QString keyFile;
    QString user;
    QString password;
    // Stable across runs, so that the broker keeps this monitor's session.
    QString clientId;
    QString topicRoot;
    Protocol protocol = Protocol::V311;
    // Messages kept while the broker is away; beyond it the oldest are dropped.
    int queueLimit = kDefaultQueueLimit;

    bool enabled() const { return !host.isEmpty(); }
    QString brokerText() const;

    // The [MQTT] section of an INI file; missing keys keep their defaults. A password
    // file that others may read is refused: problem then says why and no password is set.
    static MqttSettings fromPreferences(const QString &preferencesPath, QString *problem);
    // mqtt://[user@]host[:port][/root] or mqtts://...; replaces host, port, TLS, user and
    // (when the URL has a path) the topic root. False with the reason in errorText.
    bool applyUrl(const QString &url, QString *errorText);

    // corvane/<host name>
    static QString defaultTopicRoot();
    static QString defaultClientId();
};

#include "MqttSettings.h"

#include <QFile>
#include <QHostInfo>
#include <QSettings>
#include <QUrl>

namespace {

constexpr char kPasswordVariable[] = "CORVANE_MQTT_PASSWORD";

// The first line of a password file, which must not be readable by group or others.
QString readPasswordFile(const QString &path, QString &problem)
{
    QFile file(path);
#ifdef Q_OS_UNIX
    const QFileDevice::Permissions others = QFileDevice::ReadGroup | QFileDevice::WriteGroup |
                                            QFileDevice::ReadOther | QFileDevice::WriteOther;
    if (file.exists() && (file.permissions() & others)) {
        problem = QStringLiteral("The MQTT password file %1 may be read by others; it is "
                                 "ignored until only its owner may read it.")
                      .arg(path);
        return {};
    }
#endif
    if (!file.open(QIODevice::ReadOnly)) {
        problem = QStringLiteral("The MQTT password file %1 cannot be read: %2")
                      .arg(path, file.errorString());
        return {};
    }
    return QString::fromUtf8(file.readLine()).trimmed();
}

} // namespace

QString MqttSettings::brokerText() const
{
    return QStringLiteral("%1://%2:%3").arg(tls ? u"mqtts" : u"mqtt", host).arg(port);
}

MqttSettings MqttSettings::fromPreferences(const QString &preferencesPath, QString *problem)
{
    QSettings ini(preferencesPath, QSettings::IniFormat);
    ini.beginGroup(QStringLiteral("MQTT"));
    MqttSettings settings;
    const auto text = [&](const char *key) {
        return ini.value(QLatin1String(key)).toString().trimmed();
    };
    settings.host = text("Host");
    settings.tls = text("TLS") == u"1";
    bool isNumber = false;
    const uint port = text("Port").toUInt(&isNumber);
    settings.port = isNumber && port > 0 && port < 65536
                        ? quint16(port)
                        : (settings.tls ? kDefaultTlsPort : kDefaultPort);
    settings.caFile = text("CAFile");
    settings.certFile = text("CertFile");
    settings.keyFile = text("KeyFile");
    settings.user = text("User");
    settings.clientId = text("ClientId");
    settings.topicRoot = text("TopicRoot");
    settings.protocol = text("Protocol") == u"5" ? Protocol::V5 : Protocol::V311;
    const int limit = text("QueueLimit").toInt(&isNumber);
    if (isNumber && limit > 0)
        settings.queueLimit = limit;

    if (settings.clientId.isEmpty())
        settings.clientId = defaultClientId();
    if (settings.topicRoot.isEmpty())
        settings.topicRoot = defaultTopicRoot();
    if (qEnvironmentVariableIsSet(kPasswordVariable))
        settings.password = qEnvironmentVariable(kPasswordVariable);
    else if (const QString file = text("PasswordFile"); !file.isEmpty()) {
        QString refusal;
        settings.password = readPasswordFile(file, refusal);
        if (problem)
            *problem = refusal;
    }
    return settings;
}

bool MqttSettings::applyUrl(const QString &text, QString *errorText)
{
    const QUrl url(text, QUrl::StrictMode);
    const QString scheme = url.scheme().toLower();
    if (!url.isValid() || (scheme != u"mqtt" && scheme != u"mqtts") || url.host().isEmpty()) {
        *errorText = QStringLiteral("--mqtt needs mqtt://host[:port][/root] or mqtts://..., "
                                    "not '%1'.")
                         .arg(text);
        return false;
    }
    if (!url.password().isEmpty()) {
        // A command line is visible to every user of the machine.
        *errorText = QStringLiteral("--mqtt takes no password; set CORVANE_MQTT_PASSWORD.");
        return false;
    }
    tls = scheme == u"mqtts";
    host = url.host();
    port = quint16(url.port(tls ? kDefaultTlsPort : kDefaultPort));
    if (!url.userName().isEmpty())
        user = url.userName();
    const QString root = url.path().mid(1);
    if (!root.isEmpty())
        topicRoot = root;
    return true;
}

QString MqttSettings::defaultTopicRoot()
{
    return QStringLiteral("corvane/") + QHostInfo::localHostName();
}

QString MqttSettings::defaultClientId()
{
    return QStringLiteral("corvane-monitor@") + QHostInfo::localHostName();
}

#pragma once

#include "mqtt/MqttSettings.h"

#include "platform/MeasurementSystem.h"

#include <QObject>
#include <QString>

#include <memory>

class Clock;
class EquipmentMonitor;
class EventLog;
class MqttClient;
class MqttPublisher;

// The program's publishing to the plant's MQTT broker, shared by the window and the
// headless run: made only when a broker host is set, so that without one the client
// library is never even initialised.
class BrokerPublishing : public QObject
{
    Q_OBJECT

public:
    ~BrokerPublishing() override;

    // The [MQTT] settings of the preferences file, with a --mqtt URL over them.
    static MqttSettings settingsFor(const QString &preferencesPath, const QString &url,
                                    QString *problem);

    // Connects and starts publishing; nothing when settings name no host or when this
    // build has no MQTT client, in which case notice says so.
    static std::unique_ptr<BrokerPublishing> start(const MqttSettings &settings, EventLog &eventLog,
                                                   MeasurementSystem measurementSystem,
                                                   const Clock &clock, QString *notice);

    void watch(EquipmentMonitor &monitor);
    // "MQTT: connected to mqtt://host:1883" and the like, for a status bar or a terminal.
    QString stateText() const;
    // Delivers what is queued (a few seconds at most), marks the status "offline" and
    // disconnects.
    void finish();

signals:
    void stateTextChanged(const QString &text);

private:
    BrokerPublishing() = default;

#ifdef CORVANE_HAVE_MQTT
    std::unique_ptr<MqttClient> m_client;
    std::unique_ptr<MqttPublisher> m_publisher;
#endif
};

#pragma once

#include "MqttPayloads.h"

#include "platform/qlxLanguage.h"

#include <QHash>
#include <QObject>

#include <optional>

class Clock;
class EquipmentMonitor;
class MqttClient;
struct CorvaneFUN26;
struct RuleViolation;

namespace qlaDatabase6 {
class Subgroup;
}

// Puts what the equipment monitors of this program see on the broker: every weld, every
// change of a link's state (retained), every subgroup its sampling completes and every
// control-rule violation. It only builds the messages and queues them with the client;
// nothing here waits for the network.
class MqttPublisher : public QObject
{
    Q_OBJECT

public:
    MqttPublisher(MqttClient &client, MeasurementSystem measurementSystem, const Clock &clock,
                  QObject *parent = nullptr);

    // Publishes the monitor's welds, subgroups, rule violations and the changes of its link
    // state from now on; stops
    // by itself when the monitor is destroyed.
    void watch(EquipmentMonitor &monitor);

    // The link state the monitor shows: its link state, told apart where that does not say
    // enough by the connection label (a serial port that opened, a port number that was
    // refused).
    static MqttPayloads::LinkState linkStateOf(const EquipmentMonitor &monitor);

private:
    // What the publisher keeps of each monitor it watches.
    struct Watched
    {
        std::optional<MqttPayloads::LinkState> lastState;
        // The weld topic in UTF-8, made once per configuration name rather than per weld.
        QString configuration;
        QByteArray weldTopic;
    };

    const QByteArray &weldTopic(const EquipmentMonitor &monitor);
    MqttPayloads::Source sourceOf(const EquipmentMonitor &monitor) const;
    QString topic(const EquipmentMonitor &monitor, QStringView leaf) const;
    void publishWeld(const EquipmentMonitor &monitor, const CorvaneFUN26 &record);
    void publishSubgroup(const EquipmentMonitor &monitor, const qlaDatabase6::Subgroup &subgroup,
                         bool queued);
    void publishRule(const EquipmentMonitor &monitor, const RuleViolation &violation);
    void publishLinkState(const EquipmentMonitor &monitor);

    MqttClient &m_client;
    MeasurementSystem m_measurementSystem;
    const Clock &m_clock;
    // Built-in texts: the words on the bus are the same from every workstation.
    qlxLanguage m_busLanguage;
    QHash<const EquipmentMonitor *, Watched> m_watched;
};

#pragma once

#include "MqttPayloads.h"

#include "platform/qlxLanguage.h"

#include <QHash>
#include <QObject>

class Clock;
class EquipmentMonitor;
class MqttClient;
struct CorvaneFUN26;

// Puts what the equipment monitors of this program see on the broker: every weld, and
// every change of a link's state (retained). It only builds the messages and queues
// them with the client; nothing here waits for the network.
class MqttPublisher : public QObject
{
    Q_OBJECT

public:
    MqttPublisher(MqttClient &client, MeasurementSystem measurementSystem, const Clock &clock,
                  QObject *parent = nullptr);

    // Publishes the monitor's welds and the changes of its link state from now on; stops
    // by itself when the monitor is destroyed.
    void watch(EquipmentMonitor &monitor);

    // The link state the monitor shows: its link state, told apart where that does not say
    // enough by the connection label (a serial port that opened, a port number that was
    // refused).
    static MqttPayloads::LinkState linkStateOf(const EquipmentMonitor &monitor);

private:
    void publishWeld(const EquipmentMonitor &monitor, const CorvaneFUN26 &record);
    void publishLinkState(const EquipmentMonitor &monitor);

    MqttClient &m_client;
    MeasurementSystem m_measurementSystem;
    const Clock &m_clock;
    // Built-in texts: the words on the bus are the same from every workstation.
    qlxLanguage m_busLanguage;
    QHash<const EquipmentMonitor *, MqttPayloads::LinkState> m_lastStates;
};

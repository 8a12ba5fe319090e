#include "MqttPublisher.h"

#include "MqttClient.h"
#include "MqttTopics.h"

#include "monitor/EquipmentMonitor.h"
#include "monitor/SamplingSeam.h"
#include "platform/Clock.h"

using BusState = MqttPayloads::LinkState;

MqttPublisher::MqttPublisher(MqttClient &client, MeasurementSystem measurementSystem,
                             const Clock &clock, QObject *parent)
    : QObject(parent)
    , m_client(client)
    , m_measurementSystem(measurementSystem)
    , m_clock(clock)
{}

void MqttPublisher::watch(EquipmentMonitor &monitor)
{
    EquipmentMonitor *source = &monitor;
    connect(source, &EquipmentMonitor::weldProcessed, this,
            [this, source](const CorvaneFUN26 &record) { publishWeld(*source, record); });
    // A serial port that opened or was refused shows only in the connection label.
    const auto stateMayHaveChanged = [this, source] { publishLinkState(*source); };
    connect(source, &EquipmentMonitor::linkStateChanged, this, stateMayHaveChanged);
    connect(source, &EquipmentMonitor::connectionLabelChanged, this, stateMayHaveChanged);
    connect(source, &QObject::destroyed, this, [this, source] { m_lastStates.remove(source); });
}

BusState MqttPublisher::linkStateOf(const EquipmentMonitor &monitor)
{
    const QString label = monitor.connectionLabel();
    if (label == monitor.language().Translate(u"6056|Invalid Port Number"))
        return BusState::InvalidPort;
    switch (monitor.linkState()) {
    case LinkState::ConnectRequested:
        return label == monitor.language().Translate(u"6052|Connected") ? BusState::Connected
                                                                        : BusState::Connecting;
    case LinkState::Connected:
        return BusState::Connected;
    case LinkState::ShutDown:
    case LinkState::Stopped:
        break;
    }
    return BusState::Stopped;
}

void MqttPublisher::publishWeld(const EquipmentMonitor &monitor, const CorvaneFUN26 &record)
{
    const MqttPayloads::WeldContext context{
        .configuration = monitor.configurationName(),
        .part = monitor.sampling().Part(),
        .process = monitor.sampling().Process(),
        .measurementSystem = m_measurementSystem,
    };
    m_client.publish(
        MqttTopics::configuration(m_client.settings().topicRoot, context.configuration, u"weld"),
        MqttPayloads::weld(context, record, m_busLanguage));
}

void MqttPublisher::publishLinkState(const EquipmentMonitor &monitor)
{
    // A monitor shows its state before its configuration is loaded; a nameless state
    // would land on a topic no consumer knows.
    const QString name = monitor.configurationName();
    if (name.isEmpty())
        return;
    const BusState state = linkStateOf(monitor);
    const auto last = m_lastStates.constFind(&monitor);
    if (last != m_lastStates.cend() && *last == state)
        return;
    m_lastStates.insert(&monitor, state);
    m_client.publish(MqttTopics::configuration(m_client.settings().topicRoot, name, u"state"),
                     MqttPayloads::linkState(name, state, m_clock.now()), true);
}

#include "MqttPublisher.h"

#include "MqttClient.h"
#include "MqttTopics.h"

#include "monitor/EquipmentMonitor.h"
#include "monitor/RuleAlarmText.h"
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
    connect(&source->sampling(), &SamplingSeam::subgroupCompleted, this,
            [this, source](const qlaDatabase6::Subgroup &subgroup, bool queued) {
                publishSubgroup(*source, subgroup, queued);
            });
    connect(source, &EquipmentMonitor::ruleViolated, this,
            [this, source](const RuleViolation &violation) { publishRule(*source, violation); });
    // A serial port that opened or was refused shows only in the connection label.
    const auto stateMayHaveChanged = [this, source] { publishLinkState(*source); };
    connect(source, &EquipmentMonitor::linkStateChanged, this, stateMayHaveChanged);
    connect(source, &EquipmentMonitor::connectionLabelChanged, this, stateMayHaveChanged);
    connect(source, &QObject::destroyed, this, [this, source] { m_watched.remove(source); });
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

MqttPayloads::Source MqttPublisher::sourceOf(const EquipmentMonitor &monitor) const
{
    return {
        .configuration = monitor.configurationName(),
        .part = monitor.sampling().Part(),
        .process = monitor.sampling().Process(),
        .measurementSystem = m_measurementSystem,
    };
}

QString MqttPublisher::topic(const EquipmentMonitor &monitor, QStringView leaf) const
{
    return MqttTopics::configuration(m_client.settings().topicRoot, monitor.configurationName(),
                                     leaf);
}

const QByteArray &MqttPublisher::weldTopic(const EquipmentMonitor &monitor)
{
    Watched &watched = m_watched[&monitor];
    const QString name = monitor.configurationName();
    if (watched.weldTopic.isEmpty() || watched.configuration != name) {
        watched.configuration = name;
        watched.weldTopic = topic(monitor, u"weld").toUtf8();
    }
    return watched.weldTopic;
}

void MqttPublisher::publishWeld(const EquipmentMonitor &monitor, const CorvaneFUN26 &record)
{
    m_client.publish(weldTopic(monitor),
                     MqttPayloads::weld(sourceOf(monitor), record, m_busLanguage));
}

void MqttPublisher::publishSubgroup(const EquipmentMonitor &monitor,
                                    const qlaDatabase6::Subgroup &subgroup, bool queued)
{
    m_client.publish(topic(monitor, u"subgroup"),
                     MqttPayloads::subgroup(monitor.configurationName(), subgroup, queued));
}

void MqttPublisher::publishRule(const EquipmentMonitor &monitor, const RuleViolation &violation)
{
    // The monitor's own line is in the engineer's language; the bus gets the built-in one.
    m_client.publish(
        topic(monitor, u"rule"),
        MqttPayloads::rule(sourceOf(monitor), violation, ruleAlarmText(violation, m_busLanguage)));
}

void MqttPublisher::publishLinkState(const EquipmentMonitor &monitor)
{
    // A monitor shows its state before its configuration is loaded; a nameless state
    // would land on a topic no consumer knows.
    const QString name = monitor.configurationName();
    if (name.isEmpty())
        return;
    const BusState state = linkStateOf(monitor);
    std::optional<BusState> &last = m_watched[&monitor].lastState;
    if (last == state)
        return;
    last = state;
    m_client.publish(MqttTopics::configuration(m_client.settings().topicRoot, name, u"state"),
                     MqttPayloads::linkState(name, state, m_clock.now()), true);
}

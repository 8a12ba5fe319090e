#include "BrokerPublishing.h"

#ifdef CORVANE_HAVE_MQTT
#include "mqtt/MqttClient.h"
#include "mqtt/MqttPublisher.h"
#endif

namespace {
// Long enough to hand a full queue to a broker on the plant network at shut-down, short
// enough that a service stop never hangs on a broker that is gone.
constexpr int kFinishTimeoutMs = 5000;
} // namespace

BrokerPublishing::~BrokerPublishing() = default;

MqttSettings BrokerPublishing::settingsFor(const QString &preferencesPath, const QString &url,
                                           QString *problem)
{
    MqttSettings settings = MqttSettings::fromPreferences(preferencesPath, problem);
    if (!url.isEmpty() && !settings.applyUrl(url, problem))
        settings.host.clear();
    return settings;
}

#ifdef CORVANE_HAVE_MQTT

std::unique_ptr<BrokerPublishing> BrokerPublishing::start(const MqttSettings &settings,
                                                          EventLog &eventLog,
                                                          MeasurementSystem measurementSystem,
                                                          const Clock &clock, QString *)
{
    if (!settings.enabled())
        return nullptr;
    std::unique_ptr<BrokerPublishing> publishing(new BrokerPublishing);
    publishing->m_client = std::make_unique<MqttClient>(settings, eventLog);
    publishing->m_publisher =
        std::make_unique<MqttPublisher>(*publishing->m_client, measurementSystem, clock);
    BrokerPublishing *self = publishing.get();
    connect(self->m_client.get(), &MqttClient::stateChanged, self,
            [self] { emit self->stateTextChanged(self->stateText()); });
    publishing->m_client->start();
    return publishing;
}

void BrokerPublishing::watch(EquipmentMonitor &monitor)
{
    m_publisher->watch(monitor);
}

QString BrokerPublishing::stateText() const
{
    return m_client->stateText();
}

void BrokerPublishing::finish()
{
    m_client->finish(kFinishTimeoutMs);
}

#else

std::unique_ptr<BrokerPublishing> BrokerPublishing::start(const MqttSettings &settings, EventLog &,
                                                          MeasurementSystem, const Clock &,
                                                          QString *notice)
{
    if (settings.enabled()) {
        *notice = QStringLiteral("MQTT is unavailable in this build; nothing is published to %1.")
                      .arg(settings.brokerText());
    }
    return nullptr;
}

void BrokerPublishing::watch(EquipmentMonitor &) {}

QString BrokerPublishing::stateText() const
{
    return {};
}

void BrokerPublishing::finish() {}

#endif

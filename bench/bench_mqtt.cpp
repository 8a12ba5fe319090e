// Welds per second that a monitor puts through a local MQTT broker: each weld's JSON
// message is built and queued, and the figure counts only welds the broker has
// acknowledged. Needs a broker: run under scripts/with-mosquitto.sh.

#include "WeldGenerator.h"

#include "mqtt/MqttClient.h"
#include "mqtt/MqttPayloads.h"
#include "platform/Clock.h"
#include "platform/EventLog.h"
#include "platform/qlxLanguage.h"

#include "BenchSupport.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QTemporaryDir>

namespace {

void BM_PublishWelds(benchmark::State &state)
{
    ensureApplication<QCoreApplication>();
    const int port = qEnvironmentVariableIntValue("CORVANE_TEST_MQTT_PORT");
    if (port == 0) {
        state.SkipWithError(
            "CORVANE_TEST_MQTT_PORT is not set; run under scripts/with-mosquitto.sh");
        return;
    }
    QTemporaryDir folder;
    SystemClock clock;
    EventLog eventLog(folder.filePath(QStringLiteral("events.log")), clock);
    MqttSettings settings;
    settings.host = QStringLiteral("127.0.0.1");
    settings.port = quint16(port);
    settings.clientId = QStringLiteral("corvane-bench");
    settings.topicRoot = QStringLiteral("bench");
    MqttClient client(settings, eventLog);
    client.start();
    while (client.state() != MqttClient::State::Connected)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);

    const int batch = int(state.range(0));
    // The welds come ready, as from the capture path: their simulation is not timed.
    WeldGenerator generator(MeasurementSystem::Metric, 1);
    std::vector<CorvaneFUN26> welds(1000);
    for (CorvaneFUN26 &weld : welds)
        weld = generator.next();
    const qlxLanguage language;
    const MqttPayloads::Source context{.configuration = QStringLiteral("Press 1"),
                                       .part = QStringLiteral("Housing"),
                                       .process = QStringLiteral("Seal"),
                                       .measurementSystem = MeasurementSystem::Metric};
    const QString topic = QStringLiteral("bench/Press 1/weld");
    qint64 published = 0;
    for (auto _ : state) {
        const qint64 target = client.deliveredCount() + batch;
        for (int i = 0; i < batch; ++i)
            client.publish(topic,
                           MqttPayloads::weld(context, welds[size_t(i) % welds.size()], language));
        while (client.deliveredCount() < target)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
        published += batch;
    }
    state.SetItemsProcessed(published);
    state.counters["dropped"] = double(client.droppedCount());
    client.finish(1000);
}
BENCHMARK(BM_PublishWelds)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();

// The share of the figure above that is the JSON message alone.
void BM_BuildWeldMessage(benchmark::State &state)
{
    WeldGenerator generator(MeasurementSystem::Metric, 1);
    const CorvaneFUN26 record = generator.next();
    const qlxLanguage language;
    const MqttPayloads::Source context{.configuration = QStringLiteral("Press 1"),
                                       .part = QStringLiteral("Housing"),
                                       .process = QStringLiteral("Seal"),
                                       .measurementSystem = MeasurementSystem::Metric};
    for (auto _ : state)
        benchmark::DoNotOptimize(MqttPayloads::weld(context, record, language));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_BuildWeldMessage);

} // namespace

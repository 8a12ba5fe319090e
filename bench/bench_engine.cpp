// What one equipment monitor costs end to end, without any window: welds per second
// from bytes to datasets, alarm list and data log; resident memory per weld over a long
// run; and a link that sends nothing but random bytes, which must cost flat memory and
// time in proportion to its volume.

#include "WeldGenerator.h"

#include "monitor/EquipmentMonitor.h"
#include "platform/Clock.h"
#include "platform/EventLog.h"
#include "protocol/Function26Frame.h"

#include "BenchSupport.h"
#include "BenchWelds.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <chrono>
#include <cstdlib>

namespace {

constexpr MeasurementSystem kSystem = MeasurementSystem::Metric;

// Resident set size of this process in bytes, from /proc/self/status.
qint64 residentBytes()
{
    // Files under /proc report no size, so read to the end instead of testing atEnd().
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong() * 1024;
    }
    return -1;
}

QByteArray weldStream(int count)
{
    WeldGenerator generator(kSystem, 11);
    generator.setWeldMode(0x03);
    generator.setAlarmProbability(0.05);
    return weldStream(generator, count, kSystem);
}

// One monitor with its services, as the shell builds it, logging into a scratch folder.
struct Engine
{
    explicit Engine(bool dataLogging)
        : eventLog(folder.filePath(QStringLiteral("events.log")), clock)
    {
        ensureApplication<QCoreApplication>();
        monitor = std::make_unique<EquipmentMonitor>(
            MonitorServices{.errors = errors, .eventLog = eventLog, .clock = clock});
        monitor->Initialize(language, 0);
        monitor->setEquipment(QStringLiteral("Bench"), QStringLiteral("IP:127.0.0.1:1"));
        monitor->setDataLogging(dataLogging, folder.filePath(QStringLiteral("welds.txt")));
        for (int row = 0; row < EquipmentMonitor::kRowCount; ++row)
            monitor->setRowSelection(row, row + 1);
    }

    // What the link's data event does with one arrival.
    void arrive(QByteArrayView bytes)
    {
        monitor->receiveBytes(bytes);
        monitor->ProcessDataStream();
    }

    QTemporaryDir folder;
    SystemClock clock;
    CountingErrorReport errors;
    EventLog eventLog;
    qlxLanguage language;
    std::unique_ptr<EquipmentMonitor> monitor;
};

// Welds per second through the whole engine with the data log on, in arrivals of ten
// welds as a busy link delivers them.
void BM_WeldsWithDataLog(benchmark::State &state)
{
    Engine engine(true);
    const QByteArray stream = weldStream(1000);
    const qsizetype arrival = 10 * 125;
    qsizetype at = 0;
    for (auto _ : state) {
        engine.arrive(QByteArrayView(stream).sliced(at, arrival));
        at = (at + arrival) % stream.size();
    }
    state.SetItemsProcessed(qint64(engine.monitor->totalWelds()));
    state.counters["welds/s"] =
        benchmark::Counter(double(engine.monitor->totalWelds()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_WeldsWithDataLog)->UseRealTime()->Unit(benchmark::kMicrosecond);

// Resident memory growth per weld over a run of a million welds: the datasets keep every
// value (8 doubles a weld) and the alarm list one small entry per alarm.
void BM_MemoryPerWeld(benchmark::State &state)
{
    const bool dataLogging = state.range(1) != 0;
    const int welds = int(state.range(0));
    const QByteArray stream = weldStream(1000);
    for (auto _ : state) {
        state.PauseTiming();
        Engine engine(dataLogging);
        const qint64 before = residentBytes();
        state.ResumeTiming();
        for (int sent = 0; sent < welds; sent += 1000)
            engine.arrive(stream);
        state.PauseTiming();
        const qint64 after = residentBytes();
        state.counters["rss_growth_MB"] = double(after - before) / (1024.0 * 1024.0);
        state.counters["rss_bytes_per_weld"] =
            double(after - before) / double(engine.monitor->totalWelds());
        state.counters["alarm_lines"] = double(engine.monitor->alarms().lineCount());
        state.SetItemsProcessed(qint64(engine.monitor->totalWelds()));
        engine.monitor.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_MemoryPerWeld)
    ->Args({1000000, 0})
    ->Args({1000000, 1})
    ->Iterations(1)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

// Random bytes through one engine in arrivals of 4 KB: the receive buffer must stay
// small and every arrival cost the same. CORVANE_BENCH_RANDOM_MB sets the volume
// (default 1024 MB). The bytes are made beforehand, 64 MB that are sent over and over,
// so the engine's time is measured, not the generator's.
void BM_RandomBytes(benchmark::State &state)
{
    qint64 megabytes = 1024;
    if (const char *text = std::getenv("CORVANE_BENCH_RANDOM_MB"))
        megabytes = qMax<qint64>(1, std::atoll(text));
    const qint64 total = megabytes * 1024 * 1024;
    constexpr qsizetype kArrival = 4096;
    constexpr qsizetype kPool = 64 * 1024 * 1024;

    QByteArray pool(kPool, Qt::Uninitialized);
    quint64 seed = 0x9E3779B97F4A7C15ull;
    for (qsizetype i = 0; i < kPool; i += 8) {
        // splitmix64
        quint64 z = (seed += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        z ^= z >> 31;
        memcpy(pool.data() + i, &z, 8);
    }

    for (auto _ : state) {
        state.PauseTiming();
        Engine engine(false);
        qint64 maxBuffer = 0;
        double firstQuarter = 0;
        double lastQuarter = 0;
        const qint64 before = residentBytes();
        state.ResumeTiming();
        auto quarterStart = std::chrono::steady_clock::now();
        for (qint64 sent = 0; sent < total; sent += kArrival) {
            engine.arrive(QByteArrayView(pool).sliced(sent % kPool, kArrival));
            maxBuffer = qMax<qint64>(maxBuffer, engine.monitor->receiveBuffer().storedBytes());
            const qint64 done = sent + kArrival;
            if (done % (total / 4) == 0) {
                const auto now = std::chrono::steady_clock::now();
                const double seconds = std::chrono::duration<double>(now - quarterStart).count();
                if (done == total / 4)
                    firstQuarter = seconds;
                lastQuarter = seconds;
                quarterStart = now;
            }
        }
        state.PauseTiming();
        const qint64 after = residentBytes();
        state.counters["rss_growth_MB"] = double(after - before) / (1024.0 * 1024.0);
        state.counters["max_buffer_KB"] = double(maxBuffer) / 1024.0;
        state.counters["bad_frames_reported"] = double(engine.errors.count);
        state.counters["welds"] = double(engine.monitor->totalWelds());
        state.counters["last_vs_first_quarter"] = firstQuarter > 0 ? lastQuarter / firstQuarter : 0;
        state.SetBytesProcessed(total);
        engine.monitor.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_RandomBytes)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace

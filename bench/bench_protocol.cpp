// How fast the receiving side keeps up with a welder link. The parser reads the system clock
// for every record, as the monitor's parser does.

#include "WeldGenerator.h"

#include "platform/Clock.h"
#include "platform/RegionalFormat.h"
#include "protocol/CorvaneParser.h"
#include "protocol/CorvaneUSWSupport.h"
#include "protocol/Function26Frame.h"

#include <benchmark/benchmark.h>

using namespace CorvaneUSWSupport;

namespace {

constexpr MeasurementSystem kSystem = MeasurementSystem::Metric;

// The frames of simulated welds, as a power supply sends them.
QList<QByteArray> weldFrames(int count)
{
    WeldGenerator generator(kSystem, 7);
    generator.setWeldMode(0x03);
    QList<QByteArray> frames;
    frames.reserve(count);
    for (int i = 0; i < count; ++i)
        frames.append(Function26Frame::encode(generator.next(), kSystem));
    return frames;
}

// count frames back to back, with the one byte behind the last that lets it be taken.
QByteArray burst(int count)
{
    static const QList<QByteArray> frames = weldFrames(1000);
    QByteArray bytes;
    bytes.reserve(qsizetype(count) * 124 + 1);
    for (int i = 0; i < count; ++i)
        bytes += frames[i % frames.size()];
    bytes += '\0';
    return bytes;
}

} // namespace

// A live link: every frame arrives on its own, and each arrival is appended and drained.
// A frame is taken when the next one starts to arrive.
void BM_FramesOnePerRead(benchmark::State &state)
{
    const QList<QByteArray> frames = weldFrames(1000);
    const SystemClock clock;
    const CorvaneParser parser(kSystem, clock);
    ReceiveBuffer buffer;
    qsizetype next = 0;
    qint64 records = 0;
    for (auto _ : state) {
        AppendBytes(buffer, frames[next]);
        next = (next + 1) % frames.size();
        while (std::optional<CorvaneFUN26> record = parser.GetFunction(buffer)) {
            benchmark::DoNotOptimize(record);
            ++records;
        }
    }
    if (records + 1 != qint64(state.iterations()))
        state.SkipWithError("frames were lost");
    state.counters["frames_per_second"] =
        benchmark::Counter(double(records), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_FramesOnePerRead);

// A backlog: many frames arrive in one read and are drained in full. The time per frame
// must not grow with the size of the backlog.
void BM_DrainBurst(benchmark::State &state)
{
    const int count = int(state.range(0));
    const QByteArray bytes = burst(count);
    const SystemClock clock;
    const CorvaneParser parser(kSystem, clock);
    for (auto _ : state) {
        ReceiveBuffer buffer;
        AppendBytes(buffer, bytes);
        int records = 0;
        while (std::optional<CorvaneFUN26> record = parser.GetFunction(buffer)) {
            benchmark::DoNotOptimize(record);
            ++records;
        }
        if (records != count || ByteCount(buffer) != 1)
            state.SkipWithError("the burst was not drained");
    }
    state.SetComplexityN(count);
    state.counters["frames_per_second"] =
        benchmark::Counter(double(count) * double(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_DrainBurst)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(400000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

// Decoding as the data log and the test console use it: each record with its text line.
void BM_DecodeWithRecordText(benchmark::State &state)
{
    constexpr int kCount = 10000;
    const QByteArray bytes = burst(kCount);
    const SystemClock clock;
    const CorvaneParser parser(kSystem, clock);
    const RegionalFormat format;
    qint64 textBytes = 0;
    for (auto _ : state) {
        ReceiveBuffer buffer;
        AppendBytes(buffer, bytes);
        while (std::optional<CorvaneFUN26> record = parser.GetFunction(buffer)) {
            const QString line = record->Record(format);
            textBytes += line.size();
            benchmark::DoNotOptimize(line);
        }
    }
    benchmark::DoNotOptimize(textBytes);
    state.counters["records_per_second"] = benchmark::Counter(
        double(kCount) * double(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_DecodeWithRecordText)->Unit(benchmark::kMillisecond);

// What a monitor's eight datasets hold in memory over a long run: 10 million welds of
// simulated values, decoded as the monitor decodes them, fed to datasets that keep them
// in whole steps. Under the bound every weld is kept; with the month's bound the oldest
// are folded and memory stays flat.

#include "WeldGenerator.h"

#include "monitor/CharacteristicSteps.h"
#include "protocol/CorvaneUSWSupport.h"
#include "protocol/Function26Frame.h"
#include "stats/Dataset.h"

#include "BenchSupport.h"

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <array>
#include <memory>

namespace {

constexpr qint64 kWelds = 10'000'000;

constexpr double CorvaneFUN26::*kFields[] = {
    &CorvaneFUN26::ActualWeldTime,      &CorvaneFUN26::TotalEnergy,
    &CorvaneFUN26::ActualDistance,      &CorvaneFUN26::ActualWeldCollapse,
    &CorvaneFUN26::ActualTotalCollapse, &CorvaneFUN26::ActualVelocity,
    &CorvaneFUN26::PeakPower,           &CorvaneFUN26::WeldForceEnd,
};
constexpr int kCharacteristics = int(std::size(kFields));

qint64 heapInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return qint64(info.uordblks + info.hblkhd);
}

// The decoded values of a run of distinct welds: the generator's scatter around its means
// in the record's own steps. The long run cycles through them.
std::vector<std::array<double, kCharacteristics>> decodedWelds(MeasurementSystem system)
{
    constexpr int kDistinct = 200'000;
    WeldGenerator generator(system, 42);
    std::vector<std::array<double, kCharacteristics>> welds(kDistinct);
    for (auto &weld : welds) {
        const QByteArray data = Function26Frame::encodeData(generator.next(), system);
        const CorvaneFUN26 record =
            CorvaneUSWSupport::CreateFunction26(data, 0, system, QDateTime());
        for (int i = 0; i < kCharacteristics; ++i)
            weld[size_t(i)] = record.*kFields[i];
    }
    return welds;
}

void runWelds(benchmark::State &state, qint64 bound)
{
    const auto system = MeasurementSystem(state.range(0));
    const auto welds = decodedWelds(system);
    CountingErrorReport errors;
    double bytesPerWeld = 0;
    double halfwayBytes = 0;
    double endBytes = 0;
    qint64 folded = 0;
    for (auto _ : state) {
        const qint64 before = heapInUse();
        std::vector<std::unique_ptr<Dataset>> datasets;
        for (int i = 0; i < kCharacteristics; ++i) {
            datasets.push_back(std::make_unique<Dataset>(errors));
            datasets.back()->setValueStep(characteristicStep(i + 1, system));
            datasets.back()->setValueBound(bound);
        }
        for (qint64 weld = 0; weld < kWelds; ++weld) {
            const auto &values = welds[size_t(weld % qint64(welds.size()))];
            for (int i = 0; i < kCharacteristics; ++i)
                datasets[size_t(i)]->AddValue(values[size_t(i)]);
            if (weld == kWelds / 2)
                halfwayBytes = double(heapInUse() - before);
        }
        endBytes = double(heapInUse() - before);
        bytesPerWeld = endBytes / double(kWelds);
        folded = datasets.front()->FoldedCount();
        if (datasets.front()->Count() != kWelds || errors.count != 0)
            state.SkipWithError("values were lost");
    }
    state.counters["bytes_per_weld"] = bytesPerWeld;
    state.counters["MB_at_5M_welds"] = halfwayBytes / 1e6;
    state.counters["MB_at_10M_welds"] = endBytes / 1e6;
    state.counters["folded_per_characteristic"] = double(folded);
}

// Every weld kept one by one: the compact store's cost per weld.
void BM_TenMillionWeldsKept(benchmark::State &state)
{
    runWelds(state, 2 * kWelds);
}
BENCHMARK(BM_TenMillionWeldsKept)
    ->Arg(int(MeasurementSystem::Metric))
    ->Arg(int(MeasurementSystem::US))
    ->Unit(benchmark::kSecond)
    ->Iterations(1);

// The month's bound: past it the oldest are folded, so 10 million welds hold what 5
// million do.
void BM_TenMillionWeldsFolded(benchmark::State &state)
{
    runWelds(state, Dataset::kDefaultValueBound);
}
BENCHMARK(BM_TenMillionWeldsFolded)
    ->Arg(int(MeasurementSystem::Metric))
    ->Unit(benchmark::kSecond)
    ->Iterations(1);

} // namespace

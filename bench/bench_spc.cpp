// What the analysis of one characteristic costs: limits, run rules and capability over
// a long history of subgroups, as `corvane-spc chart` and the control-chart window
// compute them each time the window of subgroups changes.

#include "spc/Capability.h"
#include "spc/ControlChart.h"

#include <benchmark/benchmark.h>

#include <random>

namespace {

std::vector<spc::SubgroupValues> history(int count, int size)
{
    std::mt19937 random(7);
    std::normal_distribution<double> energy(812.0, 6.0);
    std::uniform_int_distribution<int> quiet(0, 19);
    std::vector<spc::SubgroupValues> subgroups;
    subgroups.reserve(std::size_t(count));
    const QDateTime start(QDate(2026, 1, 5), QTime(6, 0));
    for (int i = 0; i < count; ++i) {
        // One period in twenty is quiet and stores fewer values.
        const int n = quiet(random) == 0 ? 1 + i % size : size;
        spc::SubgroupValues subgroup{i + 1, start.addSecs(300LL * i), {}};
        for (int k = 0; k < n; ++k)
            subgroup.values.push_back(energy(random));
        subgroups.push_back(std::move(subgroup));
    }
    return subgroups;
}

void chartAndCapability(benchmark::State &state)
{
    const std::vector<spc::SubgroupValues> subgroups = history(int(state.range(0)), 5);
    spc::ChartRequest request;
    request.rules = spc::RuleSet::all();
    for (auto _ : state) {
        const spc::Chart chart = spc::ControlChart::build(subgroups, request);
        const spc::CapabilityFigures figures =
            spc::Capability::of(subgroups, chart.type, {780.0, 840.0});
        benchmark::DoNotOptimize(chart.points.data());
        benchmark::DoNotOptimize(figures.cpk);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

} // namespace

BENCHMARK(chartAndCapability)->Arg(100000)->Unit(benchmark::kMillisecond);

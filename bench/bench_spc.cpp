// What the analysis of one characteristic costs: limits, run rules and capability over
// a long history of subgroups, as `corvane-spc chart` and the control-chart window
// compute them each time the window of subgroups changes.

#include "BenchSubgroups.h"

#include "spc/Capability.h"
#include "spc/ControlChart.h"

#include <benchmark/benchmark.h>

namespace {

void chartAndCapability(benchmark::State &state)
{
    const std::vector<spc::SubgroupValues> subgroups = subgroupHistory(int(state.range(0)), 5);
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

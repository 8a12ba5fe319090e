// What drawing a control chart costs: a long history of subgroups turned into the
// chart's lines and drawn, both charts with their limit and zone lines, into an image
// the size of the window's plot, as each refresh of the control-chart window does.

#include "BenchSubgroups.h"
#include "BenchSupport.h"

#include "spc/ControlChart.h"
#include "spc/widgets/ControlChartPlot.h"

#include "platform/qlxLanguage.h"

#include <QApplication>

#include <benchmark/benchmark.h>

namespace {

void drawChart(benchmark::State &state)
{
    const std::vector<spc::SubgroupValues> subgroups = subgroupHistory(int(state.range(0)), 5);
    spc::ChartRequest request;
    request.rules = spc::RuleSet::all();
    const spc::Chart chart = spc::ControlChart::build(subgroups, request);
    ensureApplication<QApplication>();
    const ControlChartPlot::Captions captions =
        ControlChartPlot::captionsFor(chart.type, qlxLanguage());
    ControlChartPlot plot;
    plot.resize(1200, 700);
    for (auto _ : state) {
        plot.setChart(chart, captions);
        const QImage image = plot.toPixmap(1200, 700).toImage();
        benchmark::DoNotOptimize(image.constBits());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

} // namespace

BENCHMARK(drawChart)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

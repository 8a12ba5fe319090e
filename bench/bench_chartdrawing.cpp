// What drawing a control chart costs: a long history of subgroups turned into the
// chart's lines and drawn, both charts with their limit and zone lines, into an image
// the size of the window's plot, as each refresh of the control-chart window does.

#include "spc/ControlChart.h"
#include "spc/widgets/ControlChartPlot.h"

#include "platform/qlxLanguage.h"

#include <QApplication>

#include <benchmark/benchmark.h>

#include <random>

namespace {

std::vector<spc::SubgroupValues> history(int count)
{
    std::mt19937 random(11);
    std::normal_distribution<double> energy(812.0, 6.0);
    std::uniform_int_distribution<int> quiet(0, 19);
    std::vector<spc::SubgroupValues> subgroups;
    subgroups.reserve(std::size_t(count));
    const QDateTime start(QDate(2026, 1, 5), QTime(6, 0));
    for (int i = 0; i < count; ++i) {
        // One period in twenty is quiet and stores fewer values: the limits step.
        const int n = quiet(random) == 0 ? 2 + i % 3 : 5;
        spc::SubgroupValues subgroup{i + 1, start.addSecs(300LL * i), {}};
        for (int k = 0; k < n; ++k)
            subgroup.values.push_back(energy(random));
        subgroups.push_back(std::move(subgroup));
    }
    return subgroups;
}

void drawChart(benchmark::State &state)
{
    const std::vector<spc::SubgroupValues> subgroups = history(int(state.range(0)));
    spc::ChartRequest request;
    request.rules = spc::RuleSet::all();
    const spc::Chart chart = spc::ControlChart::build(subgroups, request);
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

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

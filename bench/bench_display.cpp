// What the statistics displays cost: one meter refresh after a weld, painted into an
// image (with and without a change of the bar colour, which redraws the cached frame),
// counting a million values into the histogram's bins, and opening the summary of a
// characteristic with a million values.

#include "platform/qlxLanguage.h"
#include "stats/Dataset.h"
#include "stats/HistogramBins.h"
#include "stats/widgets/BgrColor.h"
#include "stats/widgets/Histogram.h"
#include "stats/widgets/HorizontalMeter.h"
#include "stats/widgets/dlgSummary.h"

#include "BenchSupport.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QImage>

namespace {

constexpr int kMillion = 1'000'000;

// Values spread over a little more than the limits 100 .. 200, so that some bins beyond
// them fill too.
QVector<double> spreadValues(int count)
{
    QVector<double> values(count);
    quint32 state = 12345;
    for (double &value : values) {
        state = state * 1664525u + 1013904223u;
        value = 90.0 + 120.0 * double(state >> 8) / double(1u << 24);
    }
    return values;
}

// One weld as the monitor shows it: new figures, a scale that may move, the bar colour by
// the limits, the marker colours, then one refresh and one paint.
void BM_MeterRefreshAndPaint(benchmark::State &state)
{
    ensureApplication<QApplication>();
    const bool colourChanges = state.range(0) != 0;
    HorizontalMeter meter;
    meter.resize(440, 50);
    meter.setUnit(QStringLiteral("J"));
    meter.setMeterEnabled(true);
    meter.Refresh();
    QImage image(meter.size(), QImage::Format_ARGB32_Premultiplied);

    const QColor green = BgrColor::toColor(BgrColor::kGreen);
    const QColor red = BgrColor::toColor(BgrColor::kRed);
    long weld = 0;
    for (auto _ : state) {
        const double value = 100.0 + double(weld % 97);
        meter.setColorMeter(colourChanges && weld % 2 ? red : green);
        meter.setLimits(100.0, 200.0);
        meter.setValueMinimum(100.0);
        meter.setValueAverage(148.0);
        meter.setValueCurrent(value);
        meter.setValueMaximum(196.0);
        meter.setColorCurrent(value > 190 ? red : Qt::black);
        meter.Refresh();
        meter.render(&image);
        benchmark::DoNotOptimize(image.constBits());
        ++weld;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_MeterRefreshAndPaint)->ArgName("colourChanges")->Arg(0)->Arg(1);

void BM_LoadHistoBins(benchmark::State &state)
{
    const QVector<double> values = spreadValues(int(state.range(0)));
    for (auto _ : state) {
        auto bins =
            LoadHistoBins(std::span<const double>(values.constData(), values.size()), 100, 200);
        benchmark::DoNotOptimize(bins.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_LoadHistoBins)->Arg(kMillion)->Unit(benchmark::kMillisecond);

// The row detail button: the summary filled from the Dataset (copying its values), its
// labels and counts, the histogram binned and painted.
void BM_OpenSummary(benchmark::State &state)
{
    ensureApplication<QApplication>();
    CountingErrorReport errors;
    qlxLanguage language;
    Dataset dataset(errors);
    dataset.Name = QStringLiteral("Energy");
    dataset.LimitFlags = Dataset::kLowerSpecLimit | Dataset::kUpperSpecLimit;
    dataset.LowerSpecLimit = 100;
    dataset.UpperSpecLimit = 200;
    for (const double value : spreadValues(int(state.range(0))))
        dataset.AddValue(value);

    for (auto _ : state) {
        auto dialog = dlgSummary::fromDataset(dataset, language, errors);
        dialog->resize(520, 400);
        dialog->Form_Load();
        QImage image = dialog->histogram()->grab().toImage();
        benchmark::DoNotOptimize(image.constBits());
    }
    if (errors.count != 0)
        state.SkipWithError("the summary reported failures");
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_OpenSummary)->Arg(kMillion)->Unit(benchmark::kMillisecond);

} // namespace

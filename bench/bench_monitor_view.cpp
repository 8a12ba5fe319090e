// What the monitor's face costs: one weld with eight rows shown (the engine taking one
// frame with alarms, the face's refresh and a paint of the whole face into an image), on
// a fresh monitor and on one whose datasets hold a million values each and whose alarms
// list holds about a million lines, which must cost the same; and opening the summary of
// a characteristic with a million values.

#include "WeldGenerator.h"

#include "monitor/EquipmentMonitor.h"
#include "monitor/SamplingSeam.h"
#include "monitor/widgets/CorvaneUsw.h"
#include "platform/Clock.h"
#include "platform/EventLog.h"
#include "platform/SocketPort.h"
#include "protocol/Function26Frame.h"
#include "stats/DatasetCollection.h"
#include "stats/widgets/dlgSummary.h"

#include "BenchSupport.h"
#include "BenchWelds.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QImage>
#include <QTemporaryDir>

namespace {

constexpr MeasurementSystem kSystem = MeasurementSystem::Metric;
constexpr int kMillion = 1'000'000;

// Limits on half of the characteristics, so that coloured bars and markers are drawn.
class LimitsSampling : public NullSampling
{
public:
    void InitializeSpecificationLimits(DatasetCollection &datasets) override
    {
        const auto limit = [&](qint32 number, double lower, double upper) {
            Dataset &dataset = datasets.Item(DatasetCollection::keyFor(number));
            dataset.LimitFlags = Dataset::kLowerSpecLimit | Dataset::kUpperSpecLimit;
            dataset.LowerSpecLimit = lower;
            dataset.UpperSpecLimit = upper;
        };
        limit(1, 0.22, 0.28);
        limit(2, 110, 125);
        limit(4, 0.30, 0.38);
        limit(7, 40, 50);
    }
};

// A link to a power supply that never answers: the bench hands frames to the engine
// directly, as the link's data event would.
class IdleSocket : public SocketPort
{
public:
    void connectToHost(const QString &, quint16) override { m_state = Connecting; }
    void close() override { m_state = Closed; }
    int state() const override { return m_state; }
    QByteArray readAll() override { return {}; }
    QString remoteHost() const override { return {}; }
    quint16 remotePort() const override { return 0; }

private:
    int m_state = Closed;
};

// The frames of `count` simulated welds back to back, each followed by the byte that
// lets the parser take it.
// A monitor and its face, collecting, with every row showing a characteristic and
// `preload` welds already in its datasets.
struct Face
{
    explicit Face(int preload)
        : eventLog(folder.filePath(QStringLiteral("events.log")), clock)
        , generator(kSystem, 11)
    {
        ensureApplication<QApplication>();
        generator.setWeldMode(0x03);
        // About one alarm line a weld: a million welds leave a million lines in the list.
        generator.setAlarmProbability(0.22);
        monitor = std::make_unique<EquipmentMonitor>(MonitorServices{
            .errors = errors,
            .eventLog = eventLog,
            .clock = clock,
            .makeSocket = [] { return std::make_unique<IdleSocket>(); },
            .makeSampling = [] { return std::make_unique<LimitsSampling>(); },
        });
        view = std::make_unique<CorvaneUsw>(*monitor, errors);
        view->Initialize(language, 0);
        monitor->setEquipment(QStringLiteral("Bench"), QStringLiteral("IP:127.0.0.1:1"));
        for (int row = 0; row < CorvaneUsw::kRowCount; ++row)
            monitor->setRowSelection(row, row + 1);
        monitor->StartStop();
        view->resize(960, 620);
        image = QImage(view->size(), QImage::Format_ARGB32_Premultiplied);

        for (int sent = 0; sent < preload; sent += 10'000)
            arrive(weldStream(generator, std::min(10'000, preload - sent), kSystem));
        QCoreApplication::processEvents();
        // Every weld timed carries alarms, so the alarms list takes new lines each time.
        generator.setAlarmProbability(1.0);
        frame = weldStream(generator, 1, kSystem);
    }

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
    WeldGenerator generator;
    std::unique_ptr<EquipmentMonitor> monitor;
    std::unique_ptr<CorvaneUsw> view;
    QImage image;
    QByteArray frame;
};

// The face with a million values in every dataset, made once: loading it takes a while.
Face &millionFace()
{
    static Face face(kMillion);
    return face;
}

// One weld as the engineer sees it: the frame arrives, the face refreshes on the next
// pass of the event loop, and (with paint 1) the whole face is painted into an image.
void BM_WeldOnTheFace(benchmark::State &state)
{
    std::unique_ptr<Face> empty;
    if (state.range(0) == 0)
        empty = std::make_unique<Face>(0);
    Face &face = empty ? *empty : millionFace();
    const bool paint = state.range(1) != 0;
    const qint64 errorsBefore = face.errors.count;
    for (auto _ : state) {
        face.arrive(face.frame);
        QCoreApplication::processEvents();
        if (paint)
            face.view->render(&face.image);
        benchmark::DoNotOptimize(face.image.constBits());
    }
    if (face.errors.count != errorsBefore)
        state.SkipWithError("the face reported failures");
    state.counters["values_per_dataset"] = double(face.monitor->datasets().at(0).Count());
    state.counters["alarm_lines"] = double(face.monitor->alarms().lineCount());
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_WeldOnTheFace)
    ->ArgNames({"values", "paint"})
    ->Args({0, 0})
    ->Args({kMillion, 0})
    ->Args({0, 1})
    ->Args({kMillion, 1})
    ->Unit(benchmark::kMicrosecond);

// The row's summary button on a characteristic with a million values: the summary copies
// the values, counts them against the limits, bins them and is painted.
void BM_OpenSummary(benchmark::State &state)
{
    Face &face = millionFace();
    const qint64 errorsBefore = face.errors.count;
    QImage image(QSize(560, 440), QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) {
        face.view->bnSetup_Click(1);
        auto *summary = face.view->findChild<dlgSummary *>();
        if (!summary) {
            state.SkipWithError("no summary opened");
            break;
        }
        summary->resize(image.size());
        summary->render(&image);
        benchmark::DoNotOptimize(image.constBits());
        delete summary;
    }
    if (face.errors.count != errorsBefore)
        state.SkipWithError("the summary reported failures");
    state.counters["values"] = double(face.monitor->datasets().at(1).Count());
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_OpenSummary)->Unit(benchmark::kMillisecond);

} // namespace

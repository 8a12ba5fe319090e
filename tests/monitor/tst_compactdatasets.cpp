// The monitor keeps each characteristic's values as the whole steps the power supply sent
// and, past its bound, folds the oldest into a tally: every figure, count and histogram
// bin must be the one the plain values give.

#include "MonitorFixture.h"
#include "TestSuites.h"
#include "WeldGenerator.h"

#include "protocol/CorvaneUSWSupport.h"
#include "protocol/Function26Frame.h"
#include "stats/HistogramBins.h"
#include "stats/SummaryFigures.h"

#include <QTest>

#include <algorithm>
#include <vector>

namespace {

// The record field that characteristic 1 .. 8 takes, as the decoder scaled it.
constexpr double CorvaneFUN26::*kFields[] = {
    &CorvaneFUN26::ActualWeldTime,      &CorvaneFUN26::TotalEnergy,
    &CorvaneFUN26::ActualDistance,      &CorvaneFUN26::ActualWeldCollapse,
    &CorvaneFUN26::ActualTotalCollapse, &CorvaneFUN26::ActualVelocity,
    &CorvaneFUN26::PeakPower,           &CorvaneFUN26::WeldForceEnd,
};

std::vector<quint64> binCounts(const std::vector<HistogramBin> &bins)
{
    std::vector<quint64> counts;
    for (const HistogramBin &bin : bins)
        counts.push_back(quint64(bin.count));
    return counts;
}

} // namespace

class TestCompactDatasets : public QObject
{
    Q_OBJECT

private slots:
    void figuresMatchThePlainValues_data()
    {
        QTest::addColumn<MeasurementSystem>("system");
        QTest::addColumn<qint64>("bound");
        QTest::addColumn<bool>("offStepValue");
        const MeasurementSystem metric = MeasurementSystem::Metric;
        const MeasurementSystem us = MeasurementSystem::US;
        QTest::newRow("metric, all kept") << metric << Dataset::kDefaultValueBound << false;
        QTest::newRow("metric, oldest folded") << metric << qint64(1500) << false;
        QTest::newRow("US, oldest folded") << us << qint64(1500) << false;
        QTest::newRow("US, all sealed blocks folded") << us << qint64(0) << false;
        QTest::newRow("metric, a value off the step") << metric << qint64(1500) << true;
    }

    void figuresMatchThePlainValues()
    {
        QFETCH(MeasurementSystem, system);
        QFETCH(qint64, bound);
        QFETCH(bool, offStepValue);
        constexpr int kWelds = 4500;

        MonitorFixture fixture(false, system, {}, bound);
        fixture.configure();
        WeldGenerator generator(system, 2026);
        std::vector<std::vector<double>> plain(std::size(kFields));
        QByteArray stream;
        for (int weld = 0; weld < kWelds; ++weld) {
            const QByteArray frame = Function26Frame::encode(generator.next(), system);
            const CorvaneFUN26 decoded =
                CorvaneUSWSupport::CreateFunction26(frame, 6, system, QDateTime());
            for (size_t i = 0; i < std::size(kFields); ++i)
                plain[i].push_back(decoded.*kFields[i]);
            stream += frame + '\0';
            // A burst of welds per arrival, as a busy link delivers them.
            if (weld % 100 == 99) {
                fixture.feed(stream);
                stream.clear();
            }
        }
        fixture.feed(stream);
        QCOMPARE(fixture.monitor->totalWelds(), kWelds);

        const DatasetCollection &datasets = fixture.monitor->datasets();
        if (offStepValue) {
            // Not a whole step of any characteristic: the store must turn to plain values
            // mid-run and lose nothing it had.
            for (const auto &dataset : datasets) {
                dataset->AddValue(1.0 / 3.0);
                plain[size_t(dataset->ID - 1)].push_back(1.0 / 3.0);
            }
        }

        for (const auto &dataset : datasets) {
            const std::vector<double> &values = plain[size_t(dataset->ID - 1)];
            const auto [lowest, highest] = std::minmax_element(values.begin(), values.end());
            double sum = 0;
            for (const double value : values)
                sum += value;
            QCOMPARE(dataset->Count(), qint32(values.size()));
            QCOMPARE(dataset->Minimum(), *lowest);
            QCOMPARE(dataset->Maximum(), *highest);
            QCOMPARE(dataset->Average(), sum / double(values.size()));
            QCOMPARE(dataset->GetValue(dataset->Count()), values.back());
            QCOMPARE(dataset->GetValue(dataset->Count() - 300), values[values.size() - 301]);
            QCOMPARE(dataset->FoldedCount() > 0, bound < kWelds);
            QCOMPARE(dataset->valueStep() > 0, !offStepValue);

            // Limits that cut through the distribution, so every bin and both counts matter.
            const double lsl = *lowest + (*highest - *lowest) * 0.3;
            const double usl = *lowest + (*highest - *lowest) * 0.75;
            const SummaryFigures figures = SummaryFigures::fromDataset(*dataset);
            QCOMPARE(figures.valueCount(), qint64(values.size()));
            QCOMPARE(binCounts(LoadHistoBins(figures.Values, lsl, usl, figures.Folded)),
                     binCounts(LoadHistoBins(values, lsl, usl)));
            QCOMPARE(countBelow(figures.Values, lsl, figures.Folded), countBelow(values, lsl));
            QCOMPARE(countAbove(figures.Values, usl, figures.Folded), countAbove(values, usl));
        }
        QVERIFY(fixture.errors.isEmpty());
    }

    // A tally with more distinct values than it has room for halves its resolution: it
    // keeps every count, its order and its fixed size.
    void tallyStaysWithinItsSize()
    {
        ValueTally tally;
        std::vector<double> values;
        for (int i = 0; i < 3 * ValueTally::kMaxEntries; ++i)
            values.push_back(double((i * 7919) % 100003));
        tally.add(std::span<const double>(values).first(100));
        tally.add(std::span<const double>(values).subspan(100));
        QCOMPARE(tally.count(), qint64(values.size()));
        QVERIFY(tally.merged());
        QVERIFY(tally.entries().size() <= size_t(ValueTally::kMaxEntries));
        qint64 counted = 0;
        for (const ValueCount &entry : tally.entries())
            counted += entry.count;
        QCOMPARE(counted, qint64(values.size()));
        QVERIFY(std::is_sorted(
            tally.entries().begin(), tally.entries().end(),
            [](const ValueCount &a, const ValueCount &b) { return a.value < b.value; }));
    }
};

CORVANE_TEST_SUITE(TestCompactDatasets)
#include "tst_compactdatasets.moc"

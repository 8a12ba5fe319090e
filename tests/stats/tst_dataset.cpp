#include "RecordingErrorReport.h"
#include "TestSuites.h"

#include "stats/Dataset.h"

#include <QTest>

#include <limits>

// The running statistics of one characteristic and its strict limit tests.
class TestDataset : public QObject
{
    Q_OBJECT

private slots:
    void runningFiguresFollowTheValues()
    {
        RecordingErrorReport errors;
        Dataset dataset(errors);
        QCOMPARE(dataset.Average(), 0.0);
        QCOMPARE(dataset.GetValue(1), 0.0);
        const QList<double> values = {-3.5, 10.0, 2.25, 7.0, -3.5, 0.0};
        double sum = 0;
        for (double value : values) {
            dataset.AddValue(value);
            sum += value;
        }
        QCOMPARE(dataset.Count(), 6);
        QCOMPARE(dataset.LastValue(), 0.0);
        QCOMPARE(dataset.Minimum(), -3.5);
        QCOMPARE(dataset.Maximum(), 10.0);
        QCOMPARE(dataset.Average(), sum / 6);
        QCOMPARE(dataset.GetValue(2), 10.0);
        QCOMPARE(dataset.GetValue(6), 0.0);
        QCOMPARE(dataset.GetValue(0), 0.0);
        QCOMPARE(dataset.GetValue(7), 0.0);
        QCOMPARE(dataset.GetDataset(), QVector<double>(values.begin(), values.end()));

        // A minimum and maximum that arrive first must not stick from an older run.
        dataset.ClearData();
        dataset.AddValue(100.0);
        QCOMPARE(dataset.Minimum(), 100.0);
        QCOMPARE(dataset.Maximum(), 100.0);
        QCOMPARE(dataset.Average(), 100.0);
        QVERIFY(errors.isEmpty());
    }

    void clearDataKeepsTheLastValue()
    {
        RecordingErrorReport errors;
        Dataset dataset(errors);
        dataset.AddValue(4.5);
        dataset.ClearData();
        QCOMPARE(dataset.Count(), 0);
        QCOMPARE(dataset.LastValue(), 4.5);
        QVERIFY(dataset.GetDataset().isEmpty());
        dataset.AddValue(1.0);
        QCOMPARE(dataset.LastValue(), 1.0);
    }

    void limitTests_data()
    {
        QTest::addColumn<int>("flags");
        QTest::addColumn<double>("last");
        QTest::addColumn<bool>("exceedsSpec");
        QTest::addColumn<bool>("exceedsWarning");

        QTest::newRow("on the upper limit") << 2 << 10.0 << false << false;
        QTest::newRow("above the upper limit") << 2 << 10.0001 << true << false;
        QTest::newRow("on the lower limit") << 32 << 5.0 << false << false;
        QTest::newRow("below the lower limit") << 32 << 4.9999 << true << false;
        QTest::newRow("above an absent upper limit") << 32 << 11.0 << false << false;
        QTest::newRow("warnings only, far outside") << (4 | 16) << 100.0 << false << true;
        QTest::newRow("on the upper warning") << 4 << 9.0 << false << false;
        QTest::newRow("above the upper warning") << 4 << 9.5 << false << true;
        QTest::newRow("below the lower warning") << 16 << 5.5 << false << true;
        QTest::newRow("other bits carried, not tested") << (1 | 8 | 64) << 100.0 << false << false;
    }

    void limitTests()
    {
        QFETCH(int, flags);
        QFETCH(double, last);
        QFETCH(bool, exceedsSpec);
        QFETCH(bool, exceedsWarning);
        RecordingErrorReport errors;
        Dataset dataset(errors);
        dataset.LimitFlags = flags;
        dataset.UpperSpecLimit = 10;
        dataset.LowerSpecLimit = 5;
        dataset.UpperWarningLimit = 9;
        dataset.LowerWarningLimit = 6;
        // An older value outside every limit must not count: only the last value is tested.
        dataset.AddValue(-1000);
        dataset.AddValue(last);
        QCOMPARE(dataset.ExceedsSpecifications(), exceedsSpec);
        QCOMPARE(dataset.ExceedsWarnings(), exceedsWarning);
        QCOMPARE(dataset.HasLimits(), (flags & 54) != 0);
        QCOMPARE(dataset.HasSL(), (flags & 34) != 0);
        QCOMPARE(dataset.LimitFlags, flags);
    }

    void numberFormat_data()
    {
        QTest::addColumn<QString>("decimals");
        QTest::addColumn<QString>("expected");
        QTest::newRow("default") << "4"
                                 << "0.0000";
        QTest::newRow("zero") << "0"
                              << "";
        QTest::newRow("negative") << "-2"
                                  << "";
        QTest::newRow("not a number") << "many"
                                      << "";
        QTest::newRow("blanks around") << " 2 "
                                       << "0.00";
    }

    void numberFormat()
    {
        QFETCH(QString, decimals);
        QFETCH(QString, expected);
        RecordingErrorReport errors;
        Dataset dataset(errors);
        dataset.Decimals = decimals;
        QCOMPARE(dataset.NumberFormat(), expected);
    }

    // Past the sealed blocks of the store, in the open block and on either side of a
    // block's end, every value reads back as it was added.
    void manyValuesReadBack()
    {
        RecordingErrorReport errors;
        Dataset dataset(errors);
        for (int i = 0; i < 5000; ++i)
            dataset.AddValue(i * 0.5);
        QCOMPARE(dataset.Count(), 5000);
        for (const int n : {1, 1024, 1025, 4096, 4097, 5000})
            QCOMPARE(dataset.GetValue(n), (n - 1) * 0.5);
    }
};

CORVANE_TEST_SUITE(TestDataset)
#include "tst_dataset.moc"

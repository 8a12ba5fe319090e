#include "RecordingErrorReport.h"
#include "TestSuites.h"

#include "platform/qlxLanguage.h"
#include "stats/Dataset.h"
#include "stats/SummaryFigures.h"
#include "stats/widgets/BgrColor.h"
#include "stats/widgets/Histogram.h"
#include "stats/widgets/dlgSummary.h"

#include <QLabel>
#include <QTest>

#include <cmath>

namespace {

QString labelText(const dlgSummary &dialog, const char *name)
{
    const auto *label = dialog.findChild<QLabel *>(QLatin1String(name));
    return label ? label->text() : QStringLiteral("<no %1>").arg(QLatin1String(name));
}

SummaryFigures figures(QVector<double> values, double lsl, double usl)
{
    SummaryFigures f;
    f.Title = QStringLiteral("Energy");
    f.LSL = lsl;
    f.USL = usl;
    f.WarningLower = lsl;
    f.WarningUpper = usl;
    f.NumberFormat = QStringLiteral("0.0000");
    f.Values = std::move(values);
    return f;
}

// A summary dialog with its language and a report that records failures.
struct SummaryDialog
{
    qlxLanguage language;
    RecordingErrorReport errors;
    dlgSummary dialog{language, errors};
};

// Values 5, 3, 7, 4, 6 with specification limits 4 .. 6 and warning limits 4.5 .. 5.5,
// of which `flags` are set.
void fillDataset(Dataset &dataset, int flags, std::initializer_list<double> values)
{
    dataset.LimitFlags = flags;
    dataset.LowerSpecLimit = 4;
    dataset.UpperSpecLimit = 6;
    dataset.LowerWarningLimit = 4.5;
    dataset.UpperWarningLimit = 5.5;
    for (const double value : values)
        dataset.AddValue(value);
}

qint64 binned(const Histogram &histogram)
{
    qint64 sum = 0;
    for (const HistogramBin &bin : histogram.bins())
        sum += bin.count;
    return sum;
}

} // namespace

// The summary dialog of one characteristic: counts beyond the limits, figures, captions
// and the histogram it hands the values to.
class TestSummary : public QObject
{
    Q_OBJECT

private slots:
    void countsBeyondTheLimits_data()
    {
        QTest::addColumn<QVector<double>>("values");
        QTest::addColumn<int>("below");
        QTest::addColumn<int>("above");
        QTest::newRow("values on the limits are inside")
            << QVector<double>{100, 200, 150} << 0 << 0;
        QTest::newRow("three below, two above")
            << QVector<double>{99.9999, 150, 0, -5, 200.0001, 1e9, 199} << 3 << 2;
    }

    void countsBeyondTheLimits()
    {
        QFETCH(QVector<double>, values);
        QFETCH(int, below);
        QFETCH(int, above);
        SummaryDialog s;
        dlgSummary &dialog = s.dialog;
        dialog.setFigures(figures(values, 100, 200));
        QCOMPARE(dialog.CountLSL(), below);
        QCOMPARE(dialog.CountUSL(), above);

        dialog.show();
        QCOMPARE(labelText(dialog, "lblCountLSL"), QString::number(below));
        QCOMPARE(labelText(dialog, "lblCountUSL"), QString::number(above));
        QCOMPARE(labelText(dialog, "lblTotal"), QString::number(below + above));
        QVERIFY(s.errors.isEmpty());
    }

    void captionsGoThroughTheLanguage()
    {
        qlxLanguage language;
        RecordingErrorReport errors;
        language.setText(1899, QStringLiteral("Anzahl"));
        language.setText(1180, QStringLiteral("UGW"));
        language.setText(1178, QStringLiteral("OGW"));
        dlgSummary dialog(language, errors);
        dialog.Form_Load();
        QCOMPARE(labelText(dialog, "lblCountLSLCaption"), QStringLiteral("Anzahl < UGW"));
        QCOMPARE(labelText(dialog, "lblCountUSLCaption"), QStringLiteral("Anzahl > OGW"));
        QVERIFY(errors.isEmpty());
    }

    void figuresInTheNumberFormat()
    {
        SummaryDialog s;
        dlgSummary &dialog = s.dialog;
        dialog.setLocale(QLocale(QLocale::German, QLocale::Germany));
        SummaryFigures f = figures({1, 2}, 0, 10);
        f.Minimum = 1;
        f.Maximum = 2.125;
        f.Average = 1.5625;
        f.NumberFormat = QStringLiteral("0.00");
        f.Title = QStringLiteral("Peak Power");
        dialog.setFigures(f);
        dialog.Form_Load();
        QCOMPARE(labelText(dialog, "lblTitle"), QStringLiteral("Peak Power"));
        QCOMPARE(labelText(dialog, "lblMaximum"), QStringLiteral("2,13"));
        QCOMPARE(labelText(dialog, "lblAverage"), QStringLiteral("1,56"));

        // Before the first weld there are no figures.
        dialog.setFigures(figures({}, 0, 10));
        dialog.Form_Load();
        QCOMPARE(labelText(dialog, "lblMaximum"), QString());
    }

    // The histogram gets everything first and is then drawn once.
    void histogramIsFilledThenDrawn()
    {
        SummaryDialog s;
        dlgSummary &dialog = s.dialog;
        SummaryFigures f = figures({-1, 0, 5, 5, 10, 11, 12}, 0, 10);
        f.WarningLower = 2;
        f.WarningUpper = 8;
        dialog.setFigures(f);
        dialog.Form_Load();
        Histogram *histogram = dialog.histogram();
        QCOMPARE(histogram->objectName(), QStringLiteral("ctlHistogram"));
        QVERIFY(!histogram->AutoRefresh());
        QCOMPARE((QList{histogram->LimitLower(), histogram->LimitUpper(), histogram->WarningLower(),
                        histogram->WarningUpper()}),
                 (QList{0.0, 10.0, 2.0, 8.0}));
        QCOMPARE(histogram->values().size(), 7);
        // -0.5 .. 10.5: -1, 11 and 12 lie beyond the drawing range, in the outer bins,
        // which are red and marked as holding them; bins past a warning limit are yellow.
        QCOMPARE(binned(*histogram), 7);
        QCOMPARE((QList{histogram->barColors()[0], histogram->barColors()[1],
                        histogram->barColors()[11], histogram->barColors()[21]}),
                 (QList{BgrColor::kRed, BgrColor::kYellow, BgrColor::kGreen, BgrColor::kRed}));
        const QImage image = histogram->grab().toImage();
        const QRect mark = histogram->farValuesMark(21);
        QVERIFY(!mark.isEmpty() && histogram->farValuesMark(11).isEmpty());
        QCOMPARE(image.pixelColor(mark.center()), histogram->palette().color(QPalette::Text));
    }

    // Limits handed over crossed stop the load where the histogram refuses them; the labels
    // filled before stay, and the failure is reported with the dialog's location.
    void failureLeavesTheLabelsFilledSoFar()
    {
        SummaryDialog s;
        dlgSummary &dialog = s.dialog;
        dialog.setFigures(figures({1, 50, 300}, 200, 100));
        dialog.Form_Load();
        QCOMPARE(s.errors.count(), 1);
        QCOMPARE(s.errors.last().location, QStringLiteral("dlgSummary.Form_Load"));
        QCOMPARE(s.errors.last().description,
                 QStringLiteral("Invalid Value! LimitLower > LimitUpper!"));
        QCOMPARE(labelText(dialog, "lblCountLSL"), QStringLiteral("2"));
        QCOMPARE(labelText(dialog, "lblCountUSL"), QStringLiteral("1"));
        QCOMPARE(labelText(dialog, "lblTotal"), QStringLiteral("3"));
    }

    void figuresFromADataset_data()
    {
        QTest::addColumn<int>("flags");
        QTest::addColumn<double>("lsl");
        QTest::addColumn<double>("usl");
        QTest::addColumn<double>("warningLower");
        QTest::addColumn<double>("warningUpper");
        QTest::addColumn<int>("farBins");
        // Values 3 to 7; limits in the Dataset: 4 .. 6 specification, 4.5 .. 5.5 warning.
        // The histogram draws 5% of the limit range beyond the limits; values further out
        // count in the outer bins, which are marked.
        QTest::newRow("all four limits") << (2 | 4 | 16 | 32) << 4.0 << 6.0 << 4.5 << 5.5 << 2;
        QTest::newRow("no limits: the values' ends") << 0 << 3.0 << 7.0 << 3.0 << 7.0 << 0;
        QTest::newRow("lower limit only") << 32 << 4.0 << 7.0 << 4.0 << 7.0 << 1;
        QTest::newRow("upper limit only") << 2 << 3.0 << 6.0 << 3.0 << 6.0 << 1;
    }

    void figuresFromADataset()
    {
        QFETCH(int, flags);
        QFETCH(double, lsl);
        QFETCH(double, usl);
        QFETCH(double, warningLower);
        QFETCH(double, warningUpper);
        QFETCH(int, farBins);
        RecordingErrorReport errors;
        Dataset dataset(errors);
        dataset.Name = QStringLiteral("Weld Time");
        dataset.Decimals = QStringLiteral("3");
        fillDataset(dataset, flags, {5, 3, 7, 4, 6});

        qlxLanguage language;
        const auto dialog = dlgSummary::fromDataset(dataset, language, errors);
        const SummaryFigures &f = dialog->figures();
        QCOMPARE(f.Title, QStringLiteral("Weld Time"));
        QCOMPARE(
            (QList{f.LSL, f.USL, f.WarningLower, f.WarningUpper, f.Minimum, f.Maximum, f.Average}),
            (QList{lsl, usl, warningLower, warningUpper, 3.0, 7.0, 5.0}));
        QCOMPARE(f.NumberFormat, QStringLiteral("0.000"));
        QCOMPARE(f.Values, dataset.GetDataset());

        dialog->Form_Load();
        QCOMPARE(labelText(*dialog, "lblAverage"), QStringLiteral("5.000"));
        const std::vector<HistogramBin> &bins = dialog->histogram()->bins();
        QCOMPARE(binned(*dialog->histogram()), 5);
        QCOMPARE(int(bins.front().holdsFarValues) + int(bins.back().holdsFarValues), farBins);
        QVERIFY(errors.isEmpty());
    }

    // A lower limit above every value: the missing upper end must not cross it.
    void missingLimitNeverCrossesTheOther()
    {
        RecordingErrorReport errors;
        Dataset dataset(errors);
        fillDataset(dataset, Dataset::kLowerSpecLimit, {1, 2});
        qlxLanguage language;
        const auto dialog = dlgSummary::fromDataset(dataset, language, errors);
        dialog->Form_Load();
        QVERIFY(errors.isEmpty());
        QCOMPARE(labelText(*dialog, "lblCountLSL"), QStringLiteral("2"));
        QCOMPARE(labelText(*dialog, "lblCountUSL"), QStringLiteral("0"));
    }

    void overallCapabilityOfTheValues_data()
    {
        QTest::addColumn<int>("flags");
        QTest::addColumn<QString>("pp");
        QTest::addColumn<QString>("ppk");
        // Values 5 3 7 4 6 8: mean 5.5, sample σ √3.5; limits 4 .. 6 where flagged. Pp is
        // 2 / 6σ, Ppk the nearer limit's distance over 3σ; one limit gives that side only.
        const double sigma = std::sqrt(3.5);
        const auto text = [](double v) { return QString::number(v, 'f', 3); };
        QTest::newRow("both limits")
            << (2 | 32) << text(2 / (6 * sigma)) << text(0.5 / (3 * sigma));
        QTest::newRow("lower limit only") << 32 << QString() << text(1.5 / (3 * sigma));
        QTest::newRow("upper limit only") << 2 << QString() << text(0.5 / (3 * sigma));
        QTest::newRow("no limits") << 0 << QString() << QString();
    }

    void overallCapabilityOfTheValues()
    {
        QFETCH(int, flags);
        QFETCH(QString, pp);
        QFETCH(QString, ppk);
        RecordingErrorReport errors;
        Dataset dataset(errors);
        dataset.Decimals = QStringLiteral("3");
        fillDataset(dataset, flags, {5, 3, 7, 4, 6, 8});
        qlxLanguage language;
        const auto dialog = dlgSummary::fromDataset(dataset, language, errors);
        dialog->setLocale(QLocale::c());
        dialog->Form_Load();
        QCOMPARE(labelText(*dialog, "lblSigmaOverall"), QStringLiteral("1.871"));
        QCOMPARE(labelText(*dialog, "lblPp"), pp);
        QCOMPARE(labelText(*dialog, "lblPpk"), ppk);
        QVERIFY(errors.isEmpty());
    }
};

CORVANE_TEST_SUITE(TestSummary)
#include "tst_summary.moc"

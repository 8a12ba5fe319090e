#include "SamplingWidgetFixture.h"

#include "platform/spc/Database.h"
#include "sampling/widgets/NumericEntry.h"
#include "sampling/widgets/dlgSampling.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>

namespace {

// The settings as the configuration keeps them, for comparing before and after.
QString settingsText(SamplingProperties &sampling)
{
    QDomDocument document;
    document.appendChild(sampling.GetXMLNode(document));
    return document.toString(-1);
}

QByteArray alarmBox(int index)
{
    return "chkAlarmLogging_" + QByteArray::number(index);
}

// A shown sampling dialog on new settings of a fixture's monitor.
struct DialogCase
{
    DialogCase()
        : sampling(fixture.makeSampling())
    {}

    dlgSampling &open()
    {
        dialog = std::make_unique<dlgSampling>(fixture.language, *sampling, fixture.services());
        dialog->show();
        return *dialog;
    }

    SamplingWidgetFixture fixture;
    std::unique_ptr<SamplingProperties> sampling;
    std::unique_ptr<dlgSampling> dialog;
};

} // namespace

// The sampling dialog driven as the engineer drives it: what it shows for the stored
// settings, what the keyboard may put into its number fields, what OK and Cancel leave in
// the monitor's settings, and the part, process and data source taken from the database.
class TestSamplingDialog : public QObject
{
    Q_OBJECT

private slots:
    void periodShowsInTheLargestEvenUnit_data()
    {
        QTest::addColumn<int>("seconds");
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("unit");
        QTest::addColumn<int>("unitSeconds");
        // Minutes are translated, to see the list go through the language tables.
        const auto row = [](const char *name, int seconds, const char *number, const char *unit,
                            int unitSeconds) {
            QTest::newRow(name) << seconds << QString::fromUtf8(number) << QString::fromUtf8(unit)
                                << unitSeconds;
        };
        row("five minutes", 300, "5", "Minuten", 60);
        row("a shift", 28800, "8", "Hours", 3600);
        row("ninety seconds", 90, "90", "Seconds", 1);
        row("ninety minutes", 5400, "90", "Minuten", 60);
        row("nothing", 0, "0", "Hours", 3600);
    }

    void periodShowsInTheLargestEvenUnit()
    {
        QFETCH(int, seconds);
        QFETCH(QString, number);
        QFETCH(QString, unit);
        QFETCH(int, unitSeconds);
        DialogCase test;
        test.fixture.language.setText(499, QStringLiteral("Minuten"));
        test.sampling->setSamplingPeriod(seconds);
        dlgSampling &dialog = test.open();

        auto *units = control<QComboBox>(&dialog, "cboUnit");
        QCOMPARE(units->count(), 3);
        QCOMPARE(control<QLineEdit>(&dialog, "txtInterval")->text(), number);
        QCOMPARE(units->currentText(), unit);
        QCOMPARE(units->currentData().toInt(), unitSeconds);
        QCOMPARE(dialog.ctlSamplingPeriod(), seconds);
    }

    void periodReadsTheNumberTimesTheUnit_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("unit");
        QTest::addColumn<int>("seconds");
        QTest::newRow("minutes") << "90" << 1 << 5400;
        QTest::newRow("seconds") << "45" << 0 << 45;
        // No period, or none above 0: refused with a message, and nothing is copied.
        QTest::newRow("empty") << "" << 2 << 0;
        QTest::newRow("zero") << "0" << 1 << 0;
        // Too long for 32 bits: refused as an error, and nothing is copied.
        QTest::newRow("overflow") << "600000" << 2 << -1;
    }

    void periodReadsTheNumberTimesTheUnit()
    {
        QFETCH(QString, typed);
        QFETCH(int, unit);
        QFETCH(int, seconds);
        DialogCase test;
        dlgSampling &dialog = test.open();
        const QString before = settingsText(*test.sampling);

        tick(&dialog, "chkEnableSampling");
        retype(&dialog, "txtInterval", typed);
        control<QComboBox>(&dialog, "cboUnit")->setCurrentIndex(unit);
        click(&dialog, "OKButton");
        if (seconds > 0) {
            QVERIFY(dialog.isAccepted());
            QCOMPARE(test.sampling->SamplingPeriod(), seconds);
            return;
        }
        QVERIFY(dialog.isVisible());
        QCOMPARE(settingsText(*test.sampling), before);
        if (seconds == 0) {
            QCOMPARE(test.fixture.messages.count(), 1);
            QVERIFY(test.fixture.messages.last().text.contains(QStringLiteral("above 0")));
            return;
        }
        QCOMPARE(test.fixture.errors.count(), 1);
        QCOMPARE(test.fixture.errors.last().location, QStringLiteral("dlgSampling.OKButton_Click"));
        QCOMPARE(test.fixture.errors.last().number, qint32(ProgramError::kOverflow));
        QCOMPARE(settingsText(*test.sampling), before);
    }

    void numericValueReadsTheLeadingNumber_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("value");
        QTest::newRow("trailing text") << "12 s" << 12.0;
        QTest::newRow("blanks, fraction") << "  7.5" << 7.5;
        QTest::newRow("sign") << "-3" << -3.0;
        QTest::newRow("exponent") << "1e3" << 1000.0;
        QTest::newRow("exponent without digits") << "5e" << 5.0;
        QTest::newRow("other script's digits") << QStringLiteral("\u0663") << 0.0;
    }

    void numericValueReadsTheLeadingNumber()
    {
        QFETCH(QString, text);
        QFETCH(double, value);
        QCOMPARE(NumericEntry::numericValue(text), value);
    }

    void okCopiesEveryField()
    {
        DialogCase test;
        dlgSampling &dialog = test.open();
        QVERIFY(control<QRadioButton>(&dialog, "optCharacteristics_0")->isChecked());

        tick(&dialog, "chkEnableSampling");
        tick(&dialog, "optCharacteristics_1");
        retype(&dialog, "txtPart", QStringLiteral("BRK-100"));
        tick(&dialog, "chkPartReselect");
        retype(&dialog, "txtProcess", QStringLiteral("Welding"));
        retype(&dialog, "txtInterval", QStringLiteral("2"));
        control<QComboBox>(&dialog, "cboUnit")->setCurrentIndex(2);
        retype(&dialog, "txtSubgroupSize", QStringLiteral("5"));
        tick(&dialog, "chkEnableAlarmLogging");
        for (int index : {0, 3, 6})
            tick(&dialog, alarmBox(index).constData());
        click(&dialog, "OKButton");

        QVERIFY(dialog.isAccepted());
        QVERIFY(!dialog.isVisible());
        SamplingProperties &sampling = *test.sampling;
        QVERIFY(sampling.Enabled());
        QCOMPARE(sampling.CollectionType(), 1);
        QCOMPARE(sampling.Part(), QStringLiteral("BRK-100"));
        QVERIFY(sampling.AllowPartReselect());
        QCOMPARE(sampling.Process(), QStringLiteral("Welding"));
        QCOMPARE(sampling.SamplingPeriod(), 7200);
        QCOMPARE(sampling.SubgroupSize(), 5);
        QVERIFY(sampling.EnableAlarmLogging());
        QCOMPARE(sampling.LogAlarms(), 1 | 8 | 64);
        QVERIFY(test.fixture.errors.isEmpty());
    }

    void cancelCopiesNothing()
    {
        DialogCase test;
        test.sampling->setPart(QStringLiteral("HSG-7"));
        test.sampling->setLogAlarms(2);
        dlgSampling &dialog = test.open();
        const QString before = settingsText(*test.sampling);

        tick(&dialog, "chkEnableSampling");
        tick(&dialog, "optCharacteristics_1");
        retype(&dialog, "txtPart", QStringLiteral("BRK-100"));
        retype(&dialog, "txtSubgroupSize", QStringLiteral("9"));
        tick(&dialog, "chkEnableAlarmLogging");
        tick(&dialog, "chkAlarmLogging_5");
        click(&dialog, "CancelButton");

        QVERIFY(!dialog.isVisible());
        QVERIFY(!dialog.isAccepted());
        QCOMPARE(settingsText(*test.sampling), before);
    }

    void logAlarmsShowsAndReadsBackThroughTheBoxes_data()
    {
        QTest::addColumn<int>("stored");
        QTest::addColumn<QList<int>>("toggled");
        QTest::addColumn<int>("saved");
        QTest::newRow("none, tick two") << 0 << QList<int>{1, 4} << (2 | 16);
        QTest::newRow("all, untick all") << 127 << QList<int>{0, 1, 2, 3, 4, 5, 6} << 0;
        QTest::newRow("a bit beyond the groups is dropped") << (128 | 1) << QList<int>{} << 1;
    }

    void logAlarmsShowsAndReadsBackThroughTheBoxes()
    {
        QFETCH(int, stored);
        QFETCH(QList<int>, toggled);
        QFETCH(int, saved);
        DialogCase test;
        test.sampling->setEnableAlarmLogging(true);
        test.sampling->setLogAlarms(stored);
        dlgSampling &dialog = test.open();

        for (int index = 0; index < dlgSampling::kAlarmGroupCount; ++index) {
            QCOMPARE(control<QCheckBox>(&dialog, alarmBox(index).constData())->isChecked(),
                     (stored & (1 << index)) != 0);
        }
        for (int index : toggled)
            tick(&dialog, alarmBox(index).constData());
        click(&dialog, "OKButton");
        QCOMPARE(test.sampling->LogAlarms(), saved);
    }

    void partAndProcessComeFromTheDatabase()
    {
        DialogCase test;
        QVERIFY(SamplingWidgetFixture::fillDatabase(test.fixture.databasePath()));
        test.sampling->setPart(QStringLiteral("BRK-100"));
        dlgSampling &dialog = test.open();

        QString preselected;
        ModalAnswer partPicker(QStringLiteral("dlgSelectPart"), [&](QDialog *picker) {
            preselected = control<QLineEdit>(picker, "txtName")->text();
            retype(picker, "txtName", QStringLiteral("hsg"));
            QTest::keyClick(control<QWidget>(picker, "txtName"), Qt::Key_Down);
            click(picker, "OKButton");
        });
        click(&dialog, "bnPart");
        QVERIFY(partPicker.seen());
        QCOMPARE(preselected, QStringLiteral("BRK-100"));
        QCOMPARE(control<QLineEdit>(&dialog, "txtPart")->text(), QStringLiteral("HSG-7"));

        ModalAnswer processPicker(QStringLiteral("dlgSelectProcess"), [&](QDialog *picker) {
            retype(picker, "txtName", QStringLiteral("staking"));
            click(picker, "OKButton");
        });
        click(&dialog, "bnProcess");
        QVERIFY(processPicker.seen());
        QCOMPARE(control<QLineEdit>(&dialog, "txtProcess")->text(), QStringLiteral("Staking"));

        // The choices are the dialog's until OK.
        QCOMPARE(test.sampling->Part(), QStringLiteral("BRK-100"));
        click(&dialog, "OKButton");
        QCOMPARE(test.sampling->Part(), QStringLiteral("HSG-7"));
        QCOMPARE(test.sampling->Process(), QStringLiteral("Staking"));
        QVERIFY(test.fixture.errors.isEmpty());
    }

    void aDatabaseOutOfReachIsToldAndNoPickerOpens()
    {
        DialogCase test;
        const QString unreachable =
            QDir(test.fixture.folder.path()).filePath(QStringLiteral("missing/spc.db"));
        test.sampling->setDataSourceName(unreachable);
        dlgSampling &dialog = test.open();

        ModalAnswer picker(QStringLiteral("dlgSelectProcess"), [](QDialog *) {});
        click(&dialog, "bnProcess");
        QTest::qWait(50);
        QVERIFY(!picker.seen());
        QCOMPARE(test.fixture.messages.count(), 1);
        QCOMPARE(test.fixture.messages.last().title, QStringLiteral("SPC Sampling"));
        QVERIFY(test.fixture.messages.last().text.startsWith(
            QStringLiteral("Unable To Connect\r\n\r\n") + unreachable));
    }

    // A chosen source is looked at through the dialog's own connection; the monitor's
    // database changes on OK only, so a Cancel leaves a collecting monitor as it was.
    void dataSourceIsTakenOnOkOnly()
    {
        DialogCase test;
        QTemporaryDir other;
        const QString chosen = QDir(other.path()).filePath(QStringLiteral("plant.db"));
        QVERIFY(SamplingWidgetFixture::fillDatabase(chosen));
        const QString before = test.fixture.databasePath();
        for (const char *closer : {"CancelButton", "OKButton"}) {
            dlgSampling &dialog = test.open();
            auto *shown = control<QLabel>(&dialog, "lblDSN");
            QString offered;
            ModalAnswer chooser(QStringLiteral("dlgDataSource"), [&](QDialog *source) {
                offered = control<QLineEdit>(source, "txtFile")->text();
                retype(source, "txtFile", chosen);
                click(source, "OKButton");
            });
            click(&dialog, "bnDSN");
            QCOMPARE(offered, before);
            QCOMPARE(shown->toolTip(), chosen);
            QCOMPARE(test.sampling->DataSourceName(), before);
            click(&dialog, closer);
        }
        QCOMPARE(test.sampling->DataSourceName(), chosen);
        QVERIFY(test.fixture.messages.isEmpty());
    }

    void numberFieldsTakeDigitsOnly_data()
    {
        QTest::addColumn<QByteArray>("field");
        QTest::newRow("interval") << QByteArray("txtInterval");
        QTest::newRow("subgroup size") << QByteArray("txtSubgroupSize");
    }

    void numberFieldsTakeDigitsOnly()
    {
        QFETCH(QByteArray, field);
        DialogCase test;
        dlgSampling &dialog = test.open();
        auto *edit = control<QLineEdit>(&dialog, field.constData());

        retype(&dialog, field.constData(), QStringLiteral("1a2"));
        QCOMPARE(edit->text(), QStringLiteral("12"));
        QTest::keyClicks(edit, QStringLiteral("-.,x Z"));
        QCOMPARE(edit->text(), QStringLiteral("12"));
        QTest::keyClick(edit, Qt::Key_Backspace);
        QTest::keyClicks(edit, QStringLiteral("09"));
        QCOMPARE(edit->text(), QStringLiteral("109"));
    }
};

CORVANE_TEST_SUITE(TestSamplingDialog)
#include "tst_samplingdialog.moc"

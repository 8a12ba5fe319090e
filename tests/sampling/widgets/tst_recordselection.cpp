#include "SamplingWidgetFixture.h"
#include "ScratchDatabase.h"

#include "platform/spc/Database.h"
#include "sampling/widgets/WidgetPartSelector.h"
#include "sampling/widgets/dlgRecordSelection.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeView>

using qlaDatabase6::RecordKind;

namespace {

// The rows the picker's list shows now, top to bottom, as name/group.
QStringList shownRows(QDialog *picker)
{
    const QAbstractItemModel *model = control<QTreeView>(picker, "lstRecords")->model();
    QStringList rows;
    for (int row = 0; row < model->rowCount(); ++row) {
        const QString group = model->index(row, 1).data().toString();
        rows.append(model->index(row, 0).data().toString() +
                    (group.isEmpty() ? QString() : u'/' + group));
    }
    return rows;
}

QString currentRow(QDialog *picker)
{
    const QModelIndex current = control<QTreeView>(picker, "lstRecords")->currentIndex();
    return current.siblingAtColumn(0).data().toString();
}

// A shown picker on a filled database: the data row's backend, or else a file of its own.
struct PickerCase
{
    PickerCase(RecordKind kind, const QString &dsn, const QString &preselected = {})
        : dataSourceName(dsn.isEmpty() ? fixture.databasePath() : dsn)
    {
        database.setDataSourceName(dataSourceName);
        connected =
            SamplingWidgetFixture::fillDatabase(dataSourceName) && database.openConnection();
        picker = std::make_unique<dlgRecordSelection>(kind, database, fixture.language,
                                                      fixture.services());
        picker->setPreselectedName(preselected);
        picker->show();
    }

    SamplingWidgetFixture fixture;
    QString dataSourceName;
    qlaDatabase6::SqlDatabase database;
    bool connected = false;
    std::unique_ptr<dlgRecordSelection> picker;
};

} // namespace

// The part and process pickers against a real SPC database: what they list, how typing
// narrows the list and chooses, adding a name that is not there yet, and the monitor's
// part button going through the picker.
class TestRecordSelection : public QObject
{
    Q_OBJECT

private slots:
    void listsAndNarrowsByTyping_data() { addBackendRows(); }

    void listsAndNarrowsByTyping()
    {
        SCRATCH_DATABASE(scratch);
        PickerCase test(RecordKind::Part, scratch.dsn());
        QVERIFY(test.connected);
        QDialog *picker = test.picker.get();

        QCOMPARE(shownRows(picker), (QStringList{"BRK-100/Brackets", "BRK-200/Brackets", "HSG-7"}));
        QCOMPARE(control<QLabel>(picker, "lblCount")->text(), QStringLiteral("3 of 3 shown"));
        QTest::keyClicks(control<QWidget>(picker, "txtName"), QStringLiteral("rk"));
        QCOMPARE(shownRows(picker), (QStringList{"BRK-100/Brackets", "BRK-200/Brackets"}));
        QCOMPARE(control<QLabel>(picker, "lblCount")->text(), QStringLiteral("2 of 3 shown"));
        // Nothing is chosen until the name is whole, in any case.
        QCOMPARE(currentRow(picker), QString());
        QVERIFY(control<QPushButton>(picker, "bnNew")->isEnabled());
        retype(picker, "txtName", QStringLiteral("brk-200"));
        QCOMPARE(shownRows(picker), QStringList{"BRK-200/Brackets"});
        QCOMPARE(currentRow(picker), QStringLiteral("BRK-200"));
        QVERIFY(!control<QPushButton>(picker, "bnNew")->isEnabled());

        click(picker, "OKButton");
        QCOMPARE(picker->result(), int(QDialog::Accepted));
        QCOMPARE(test.picker->chosenName(), QStringLiteral("BRK-200"));
    }

    void addsATypedNameAfterConfirmation_data() { addBackendRows(); }

    void addsATypedNameAfterConfirmation()
    {
        SCRATCH_DATABASE(scratch);
        PickerCase test(RecordKind::Part, scratch.dsn());
        QVERIFY(test.connected);
        QDialog *picker = test.picker.get();
        RecordingMessageBoxes &messages = test.fixture.messages;

        retype(picker, "txtName", QStringLiteral("  CLP-9 "));
        messages.answers = {false};
        click(picker, "bnNew");
        QCOMPARE(messages.questions.size(), 1);
        QCOMPARE(messages.questions.last().title, QStringLiteral("Select Part"));
        QCOMPARE(
            messages.questions.last().text,
            QStringLiteral("The part \"CLP-9\" is not in the SPC database.\r\n\r\nAdd it now?"));
        QCOMPARE(SamplingWidgetFixture::names(scratch.dsn(), RecordKind::Part).size(), 3);

        messages.answers = {true};
        click(picker, "bnNew");
        QCOMPARE(SamplingWidgetFixture::names(scratch.dsn(), RecordKind::Part),
                 (QStringList{"BRK-100", "BRK-200", "CLP-9", "HSG-7"}));
        QCOMPARE(currentRow(picker), QStringLiteral("CLP-9"));
        QVERIFY(picker->isVisible());
        click(picker, "OKButton");
        QCOMPARE(test.picker->chosenName(), QStringLiteral("CLP-9"));
        QVERIFY(test.fixture.errors.isEmpty());
    }

    void okWithANewNameAsksFirst()
    {
        PickerCase test(RecordKind::Process, {}, QStringLiteral("Welding"));
        QVERIFY(test.connected);
        QDialog *picker = test.picker.get();
        QCOMPARE(shownRows(picker), (QStringList{"Staking/Assembly", "Welding/Assembly"}));

        retype(picker, "txtName", QStringLiteral("Riveting"));
        test.fixture.messages.answers = {false};
        click(picker, "OKButton");
        QVERIFY(picker->isVisible());
        QCOMPARE(test.fixture.messages.questions.last().text,
                 QStringLiteral("The process \"Riveting\" is not in the SPC database.\r\n\r\n"
                                "Add it now?"));
        test.fixture.messages.answers = {true};
        click(picker, "OKButton");
        QCOMPARE(picker->result(), int(QDialog::Accepted));
        QCOMPARE(test.picker->chosenName(), QStringLiteral("Riveting"));
        QCOMPARE(SamplingWidgetFixture::names(test.dataSourceName, RecordKind::Process),
                 (QStringList{"Riveting", "Staking", "Welding"}));
        // A blank name can be neither chosen nor added.
        retype(picker, "txtName", QStringLiteral("   "));
        QVERIFY(!control<QPushButton>(picker, "bnNew")->isEnabled());
    }

    void partButtonOfTheMonitorUsesThePicker()
    {
        SamplingWidgetFixture fixture;
        QVERIFY(SamplingWidgetFixture::fillDatabase(fixture.databasePath()));
        WidgetPartSelector selector(fixture.language, fixture.services());
        auto sampling = fixture.makeSampling(&selector);
        sampling->setPart(QStringLiteral("BRK-100"));
        sampling->setAllowPartReselect(true);
        QWidget monitorWindow;
        monitorWindow.show();
        // Not connected yet: the picker connects and still opens on the configured part.
        QVERIFY(!sampling->database().isConnected());

        QString preselected;
        QWidget *owner = nullptr;
        const auto choose = [&](const QString &name) {
            return [&, name](QDialog *picker) {
                preselected = currentRow(picker);
                owner = picker->parentWidget();
                retype(picker, "txtName", name);
                click(picker, "OKButton");
            };
        };
        {
            ModalAnswer picked(QStringLiteral("dlgSelectPart"), choose(QStringLiteral("hsg-7")));
            QVERIFY(sampling->SelectPart(&monitorWindow));
            QVERIFY(picked.seen());
        }
        QCOMPARE(preselected, QStringLiteral("BRK-100"));
        QCOMPARE(owner, &monitorWindow);
        QCOMPARE(sampling->Part(), QStringLiteral("HSG-7"));
        ModalAnswer cancelled(QStringLiteral("dlgSelectPart"),
                              [](QDialog *picker) { click(picker, "CancelButton"); });
        QVERIFY(!sampling->SelectPart(&monitorWindow));
        QVERIFY(cancelled.seen());
        QCOMPARE(sampling->Part(), QStringLiteral("HSG-7"));
        QVERIFY(fixture.errors.isEmpty());
    }
};

CORVANE_TEST_SUITE(TestRecordSelection)
#include "tst_recordselection.moc"

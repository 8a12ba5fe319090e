#include "RecordingErrorReport.h"
#include "WhenShown.h"

#include "platform/qlxLanguage.h"
#include "platform/widgets/ErrorWindowReport.h"
#include "platform/widgets/WidgetMessageBoxes.h"

#include <QApplication>
#include <QDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

// The desktop's message boxes, which open over the modal dialog that asked, with the
// right icon, where a question answers no unless the user says yes; and its error report.
class TestWidgetMessageBoxes : public QObject
{
    Q_OBJECT

private slots:
    void criticalOpensOverTheModalDialog()
    {
        QDialog dialog;
        dialog.setModal(true);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        QCOMPARE(QApplication::activeModalWidget(), &dialog);

        QWidget *owner = nullptr;
        QMessageBox::Icon icon = QMessageBox::NoIcon;
        QString text;
        // A short text under a long title: the box is wide enough for the whole title.
        const QString title = QStringLiteral("Kommunikationseinstellungen - Schweißlinie 4");
        bool titleFits = false;
        whenShown<QMessageBox>([&](QMessageBox *box) {
            owner = box->parentWidget();
            icon = box->icon();
            text = box->text();
            titleFits = box->width() > box->fontMetrics().horizontalAdvance(title);
            box->accept();
        });
        WidgetMessageBoxes messages;
        messages.critical(title, QStringLiteral("Invalid Value: IP Port"));
        QVERIFY(titleFits);
        QCOMPARE(owner, &dialog);
        QCOMPARE(icon, QMessageBox::Critical);
        QCOMPARE(text, QStringLiteral("Invalid Value: IP Port"));
    }

    void questionIsYesOnlyWhenAnsweredYes()
    {
        WidgetMessageBoxes messages;
        whenShown<QMessageBox>([](QMessageBox *box) { box->button(QMessageBox::Yes)->click(); });
        QVERIFY(messages.question(QStringLiteral("SPC"), QStringLiteral("Add the part?")));

        // Enter takes the default button, which is No.
        whenShown<QMessageBox>([](QMessageBox *box) { QTest::keyClick(box, Qt::Key_Return); });
        QVERIFY(!messages.question(QStringLiteral("SPC"), QStringLiteral("Add the part?")));
    }

    // A burst of failures from a link must not stack modal boxes: the error report lists
    // each distinct failure once, counts repeats, and logs every one.
    void burstCoalescesWithoutModalBoxes()
    {
        RecordingErrorReport log;
        const qlxLanguage language;
        ErrorWindowReport report(log, QStringLiteral("Corvane Ostrel"), language);
        QVERIFY(!report.window());

        for (int i = 0; i < 500; ++i)
            report.Show(QStringLiteral("CorvaneUsw.ProcessDataStream"), -2147221504,
                        QStringLiteral("Unable to resolve End of Transmission"),
                        QStringLiteral("CorvaneParser.ProcessBlock"));
        report.Show(QStringLiteral("CorvaneUsw.Timer1_Timer"), 6, QStringLiteral("Overflow"),
                    QString());

        QCOMPARE(log.count(), 501);
        QVERIFY(report.window()->isVisible());
        QVERIFY(!report.window()->isModal());
        QCOMPARE(QApplication::activeModalWidget(), nullptr);
        QCOMPARE(report.lineCount(), 2);

        auto *list = report.window()->findChild<QTreeWidget *>(QStringLiteral("lstErrors"));
        QVERIFY(list);
        // The newest distinct failure stands on top; the repeated one counts its repeats.
        QCOMPARE(list->topLevelItem(0)->text(2), QStringLiteral("CorvaneUsw.Timer1_Timer"));
        QCOMPARE(list->topLevelItem(1)->text(1), QStringLiteral("500"));
    }
};

QTEST_MAIN(TestWidgetMessageBoxes)
#include "tst_widgetmessageboxes.moc"

#include "RecordingErrorReport.h"

#include "platform/qlxLanguage.h"
#include "platform/widgets/ErrorWindowReport.h"

#include <QApplication>
#include <QTest>
#include <QTreeWidget>
#include <QWidget>

// The desktop's error report: a burst of failures from a link must not stack modal
// boxes; it lists each distinct failure once, counts repeats, and logs every one.
class TestErrorWindowReport : public QObject
{
    Q_OBJECT

private slots:
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

QTEST_MAIN(TestErrorWindowReport)
#include "tst_errorwindowreport.moc"

#include "platform/widgets/WidgetMessageBoxes.h"

#include <QApplication>
#include <QDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <functional>

namespace {

// Answers the next message box once it is on the screen, after handing it to inspect.
void whenBoxShown(std::function<void(QMessageBox *)> answer)
{
    auto *poll = new QTimer;
    poll->setInterval(10);
    QObject::connect(poll, &QTimer::timeout, [poll, answer] {
        for (QWidget *window : QApplication::topLevelWidgets()) {
            auto *box = qobject_cast<QMessageBox *>(window);
            if (!box || !box->isVisible())
                continue;
            poll->stop();
            poll->deleteLater();
            answer(box);
            if (box->isVisible())
                box->reject();
            return;
        }
    });
    poll->start();
}

} // namespace

// The desktop's message boxes: they open over the modal dialog that asked, with the
// right icon, and a question answers no unless the user says yes.
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
        whenBoxShown([&](QMessageBox *box) {
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
        whenBoxShown([](QMessageBox *box) { box->button(QMessageBox::Yes)->click(); });
        QVERIFY(messages.question(QStringLiteral("SPC"), QStringLiteral("Add the part?")));

        // Enter takes the default button, which is No.
        whenBoxShown([](QMessageBox *box) { QTest::keyClick(box, Qt::Key_Return); });
        QVERIFY(!messages.question(QStringLiteral("SPC"), QStringLiteral("Add the part?")));
    }
};

QTEST_MAIN(TestWidgetMessageBoxes)
#include "tst_widgetmessageboxes.moc"

#include "WidgetMessageBoxes.h"

#include <QApplication>
#include <QGridLayout>
#include <QMessageBox>
#include <QSpacerItem>

namespace {

// Room that the window frame takes beside the title: the icon and the frame's buttons.
constexpr int kTitleFrameRoom = 160;

// A box without an owner could open behind a modal dialog and leave the user with a
// program that seems to hang; it belongs to the window that asked.
QWidget *owner()
{
    QWidget *window = QApplication::activeModalWidget();
    return window ? window : QApplication::activeWindow();
}

// A message box is only as wide as its text, and the window frame cuts a longer title
// ("Commu... s Setup"); a row of empty space under the text keeps the whole title in view.
int exec(QMessageBox &box)
{
    const int titleWidth = box.fontMetrics().horizontalAdvance(box.windowTitle());
    if (auto *grid = qobject_cast<QGridLayout *>(box.layout())) {
        grid->addItem(new QSpacerItem(titleWidth + kTitleFrameRoom, 0, QSizePolicy::Minimum,
                                      QSizePolicy::Fixed),
                      grid->rowCount(), 0, 1, grid->columnCount());
    }
    return box.exec();
}

} // namespace

void WidgetMessageBoxes::critical(const QString &title, const QString &text)
{
    QMessageBox box(QMessageBox::Critical, title, text, QMessageBox::Ok, owner());
    exec(box);
}

void WidgetMessageBoxes::beep()
{
    QApplication::beep();
}

bool WidgetMessageBoxes::question(const QString &title, const QString &text)
{
    QMessageBox box(QMessageBox::Question, title, text, QMessageBox::Yes | QMessageBox::No,
                    owner());
    // No is the default: Enter pressed out of habit must not do what cannot be undone.
    box.setDefaultButton(QMessageBox::No);
    return exec(box) == QMessageBox::Yes;
}

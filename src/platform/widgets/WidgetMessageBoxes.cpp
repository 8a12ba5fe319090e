#include "WidgetMessageBoxes.h"

#include <QApplication>
#include <QMessageBox>

namespace {

// A box without an owner could open behind a modal dialog and leave the user with a
// program that seems to hang; it belongs to the window that asked.
QWidget *owner()
{
    QWidget *window = QApplication::activeModalWidget();
    return window ? window : QApplication::activeWindow();
}

} // namespace

void WidgetMessageBoxes::critical(const QString &title, const QString &text)
{
    QMessageBox::critical(owner(), title, text);
}

void WidgetMessageBoxes::beep()
{
    QApplication::beep();
}

bool WidgetMessageBoxes::question(const QString &title, const QString &text)
{
    // No is the default: Enter pressed out of habit must not do what cannot be undone.
    return QMessageBox::question(owner(), title, text, QMessageBox::Yes | QMessageBox::No,
                                 QMessageBox::No) == QMessageBox::Yes;
}

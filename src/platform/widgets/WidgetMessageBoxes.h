#pragma once

#include "platform/MessageBoxes.h"

// Messages of the desktop program: a modal message box over the window the user is
// working in (the open modal dialog, else the active window), and the system's beep.
class WidgetMessageBoxes : public MessageBoxes
{
public:
    void critical(const QString &title, const QString &text) override;
    void beep() override;
    bool question(const QString &title, const QString &text) override;
};

#pragma once

#include <QString>

// The message service through which logic tells the user something that stops what
// they asked for (a sampling run that cannot start, a part that cannot be chosen now).
// The window shows these as modal message boxes; a headless run writes them where its
// operator looks.
class MessageBoxes
{
public:
    virtual ~MessageBoxes() = default;

    // A message with the critical icon; title and text are already translated.
    virtual void critical(const QString &title, const QString &text) = 0;
    // The short warning sound for a command that is refused.
    virtual void beep() = 0;
    // A yes-or-no question before something is done that cannot be taken back (a new
    // part in the SPC database); true when the user answered yes. Without a user to
    // ask, the answer is no.
    virtual bool question(const QString &title, const QString &text)
    {
        Q_UNUSED(title)
        Q_UNUSED(text)
        return false;
    }
};

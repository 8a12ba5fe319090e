#pragma once

#include "MessageBoxes.h"

#include <cstdio>

class ErrorReport;

// Messages of a run without a window: a critical message goes to the error report (which
// a headless run keeps in its log and echoes on standard error), its title as the
// location and its line breaks folded to " / " so that it stays one log line; a beep is
// the terminal's bell on the given stream.
class HeadlessMessageBoxes : public MessageBoxes
{
public:
    explicit HeadlessMessageBoxes(ErrorReport &errors, std::FILE *bell = stderr);

    void critical(const QString &title, const QString &text) override;
    void beep() override;

    // The message as one line: each run of line breaks becomes " / ".
    static QString oneLine(const QString &text);

private:
    ErrorReport &m_errors;
    std::FILE *m_bell;
};

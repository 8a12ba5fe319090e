#pragma once

#include "shell/HeadlessOptions.h"

#include <QString>
#include <QStringList>

#include <optional>

// The command line of corvane-monitor, window or headless: the options of a headless
// run, which the window shares (--data-dir, /debug), and the language of the window's
// captions.
struct StartupOptions
{
    HeadlessOptions program;
    // "--lang de": the German table; "--lang en": the built-in English texts. Empty: the
    // desktop's language decides.
    QString language;
    // "--start": the window starts data collection on every configuration once they are
    // loaded, as a headless run does; for a workstation that must collect after a
    // restart without anyone at it.
    bool startCollecting = false;

    // Takes --lang VALUE (or --lang=VALUE) and --start out and hands the rest to
    // HeadlessOptions.
    static std::optional<StartupOptions> parse(const QStringList &arguments, QString *errorText);
    static QString usage();

    // Whether the raw command line asks for a headless run; decided before any
    // application object exists, since a headless run must not need a display.
    static bool asksForHeadless(int argc, char *argv[]);
};

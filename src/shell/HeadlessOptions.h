#pragma once

#include "stats/Dataset.h"

#include <QString>
#include <QStringList>

#include <optional>

// The command line of corvane-monitor.
struct HeadlessOptions
{
    bool headless = false;
    // Empty: CORVANE_DATA_DIR, else the platform's data folder.
    QString dataFolder;
    // One line per weld on standard output.
    bool verbose = false;
    // "/debug" as an argument of its own, in any case: simulated values.
    bool debugMode = false;
    // Values of each characteristic kept one by one before the oldest are folded.
    qint64 valuesKept = Dataset::kDefaultValueBound;
    bool help = false;
    // --mqtt mqtt://host:port/root (or mqtts://): the broker to publish to, over the
    // [MQTT] section of the preferences file.
    QString mqttUrl;

    // The options of arguments (the program's name first). Unknown options, a missing
    // option value and stray arguments are bad usage: no options, and the reason in
    // errorText.
    static std::optional<HeadlessOptions> parse(const QStringList &arguments, QString *errorText);
    static QString usage();
};

#include "HeadlessOptions.h"

#include "TerminationSignals.h"
#include "mqtt/MqttSettings.h"
#include "platform/ProgramFiles.h"

#include <QCommandLineParser>

std::optional<HeadlessOptions> HeadlessOptions::parse(const QStringList &arguments,
                                                      QString *errorText)
{
    const QCommandLineOption kHeadless(QStringLiteral("headless"));
    const QCommandLineOption kDataDir(QStringLiteral("data-dir"), QString(), QStringLiteral("DIR"));
    const QCommandLineOption kVerbose(QStringLiteral("verbose"));
    const QCommandLineOption kValuesKept(QStringLiteral("values-kept"), QString(),
                                         QStringLiteral("N"));
    const QCommandLineOption kHelp(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    const QCommandLineOption kMqtt(QStringLiteral("mqtt"), QString(), QStringLiteral("URL"));
    QCommandLineParser parser;
    parser.addOptions({kHeadless, kDataDir, kVerbose, kValuesKept, kHelp, kMqtt});
    if (!parser.parse(arguments)) {
        if (errorText)
            *errorText = parser.errorText();
        return std::nullopt;
    }
    // "/debug" is the only argument that is not an option; it may be written in any case.
    for (const QString &argument : parser.positionalArguments()) {
        if (!debugSwitchPresent({argument})) {
            if (errorText)
                *errorText = QStringLiteral("Unexpected argument '%1'.").arg(argument);
            return std::nullopt;
        }
    }
    HeadlessOptions options;
    options.headless = parser.isSet(kHeadless);
    options.dataFolder = parser.value(kDataDir);
    options.verbose = parser.isSet(kVerbose);
    options.debugMode = debugSwitchPresent(parser.positionalArguments());
    options.help = parser.isSet(kHelp);
    if (parser.isSet(kValuesKept)) {
        bool isNumber = false;
        options.valuesKept = parser.value(kValuesKept).toLongLong(&isNumber);
        if (!isNumber || options.valuesKept < 0) {
            if (errorText)
                *errorText = QStringLiteral("--values-kept needs a whole number of 0 or more.");
            return std::nullopt;
        }
    }
    options.mqttUrl = parser.value(kMqtt);
    QString urlError;
    if (parser.isSet(kMqtt) && !MqttSettings().applyUrl(options.mqttUrl, &urlError)) {
        if (errorText)
            *errorText = urlError;
        return std::nullopt;
    }
    if (parser.isSet(kDataDir) && options.dataFolder.isEmpty()) {
        if (errorText)
            *errorText = QStringLiteral("--data-dir needs a folder.");
        return std::nullopt;
    }
    return options;
}

QString HeadlessOptions::usage()
{
    return QStringLiteral(
               "Usage: corvane-monitor [--headless] [--data-dir DIR] [--verbose] "
               "[--values-kept N]\n"
               "                       [--mqtt URL] [/debug]\n"
               "Watches the welders of the configurations file in the data folder and logs\n"
               "their welds.\n"
               "\n"
               "  --headless      Run without a window until %1,\n"
               "                  then save the configurations file and end.\n")
               .arg(QLatin1String(TerminationSignals::kHowToEnd)) +
           QStringLiteral(
               "  --data-dir DIR  Data folder (overrides CORVANE_DATA_DIR).\n"
               "  --verbose       Print one line per weld: configuration, cycle, weld time,\n"
               "                  energy, alarms; and one line per control-chart rule that a\n"
               "                  sampled subgroup breaks against its frozen limits.\n"
               "  --values-kept N Values of each characteristic kept one by one; older ones\n"
               "                  are folded into a histogram (default 2678400, a month at\n"
               "                  one weld a second).\n"
               "  --mqtt URL      Publish every weld to an MQTT broker: mqtt://host[:port][/root]\n"
               "                  or mqtts://... (overrides the [MQTT] preferences).\n"
               "  /debug          Replace received values by simulated ones.\n"
               "  -h, --help      Show this help.\n");
}

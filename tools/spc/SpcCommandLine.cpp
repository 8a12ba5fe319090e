#include "SpcCommandLine.h"

#include "platform/ProgramFiles.h"
#include "platform/spc/DataSource.h"

#include <QCommandLineParser>
#include <QDir>
#include <QLocale>

#include <array>

namespace {

struct ActionRule
{
    const char *word;
    SpcCommand::Action action;
    int positionals;
    QStringList options;
};

const QStringList kLimitOptions = {QStringLiteral("usl"), QStringLiteral("lsl"),
                                   QStringLiteral("uwl"), QStringLiteral("lwl"),
                                   QStringLiteral("clear")};

const QStringList kCharacteristicOptions = {QStringLiteral("part"), QStringLiteral("process"),
                                            QStringLiteral("test"), QStringLiteral("since"),
                                            QStringLiteral("until")};

const std::array<ActionRule, 14> &actionRules()
{
    static const std::array<ActionRule, 14> rules = {{
        {"init", SpcCommand::Action::Init, 0, {}},
        {"add-group", SpcCommand::Action::AddGroup, 1, {}},
        {"add-part", SpcCommand::Action::AddPart, 1, {QStringLiteral("group")}},
        {"add-process", SpcCommand::Action::AddProcess, 1, {QStringLiteral("group")}},
        {"add-test", SpcCommand::Action::AddTest, 1, {}},
        {"set-limits", SpcCommand::Action::SetLimits, 2, kLimitOptions},
        {"list", SpcCommand::Action::List, 1, {}},
        {"subgroups",
         SpcCommand::Action::Subgroups,
         0,
         {QStringLiteral("part"), QStringLiteral("process"), QStringLiteral("since"),
          QStringLiteral("csv")}},
        {"chart", SpcCommand::Action::Chart, 0,
         kCharacteristicOptions +
             QStringList{"type", "baseline", "frozen", "rules", "csv", "png", "svg"}},
        {"capability", SpcCommand::Action::Capability, 0,
         kCharacteristicOptions + QStringList{"csv"}},
        {"freeze-limits", SpcCommand::Action::FreezeLimits, 0,
         kCharacteristicOptions + QStringList{"type", "baseline"}},
        {"import", SpcCommand::Action::Import, 1, {}},
        {"outbox",
         SpcCommand::Action::Outbox,
         0,
         {QStringLiteral("outbox"), QStringLiteral("flush"), QStringLiteral("discard")}},
        {"help", SpcCommand::Action::Help, 0, {}},
    }};
    return rules;
}

const QStringList kAllOptions = {
    QStringLiteral("group"),   QStringLiteral("usl"),      QStringLiteral("lsl"),
    QStringLiteral("uwl"),     QStringLiteral("lwl"),      QStringLiteral("clear"),
    QStringLiteral("part"),    QStringLiteral("process"),  QStringLiteral("since"),
    QStringLiteral("csv"),     QStringLiteral("test"),     QStringLiteral("until"),
    QStringLiteral("type"),    QStringLiteral("baseline"), QStringLiteral("frozen"),
    QStringLiteral("rules"),   QStringLiteral("outbox"),   QStringLiteral("flush"),
    QStringLiteral("discard"), QStringLiteral("png"),      QStringLiteral("svg")};

bool isFlag(const QString &name)
{
    static const QStringList kFlags = {QStringLiteral("clear"), QStringLiteral("csv"),
                                       QStringLiteral("frozen"), QStringLiteral("flush"),
                                       QStringLiteral("discard")};
    return kFlags.contains(name);
}

std::optional<double> limitValue(const QCommandLineParser &parser, const QString &name,
                                 QString &errorText)
{
    if (!parser.isSet(name))
        return std::nullopt;
    bool ok = false;
    const double value = QLocale::c().toDouble(parser.value(name), &ok);
    if (!ok)
        errorText = QStringLiteral("--%1 needs a number, not \"%2\"").arg(name, parser.value(name));
    return ok ? std::optional<double>(value) : std::nullopt;
}

// A date alone starts the window at the beginning of that day and ends it at its end.
QDateTime timeValue(const QString &text, bool endOfDay)
{
    // QDate reads the date at the front of a date and time too: only a bare date counts.
    const QDate date = text.size() == 10 ? QDate::fromString(text, Qt::ISODate) : QDate();
    QDateTime time = date.isValid() ? (endOfDay ? date.endOfDay() : date.startOfDay())
                                    : QDateTime::fromString(text, Qt::ISODateWithMs);
    // Subgroups are kept in the workstation's local time.
    if (time.isValid() && time.timeSpec() != Qt::LocalTime)
        time = time.toLocalTime();
    return time;
}

bool readLimits(const QCommandLineParser &parser, SpcCommand &command, QString &errorText)
{
    command.upperSpecLimit = limitValue(parser, QStringLiteral("usl"), errorText);
    command.lowerSpecLimit = limitValue(parser, QStringLiteral("lsl"), errorText);
    command.upperWarningLimit = limitValue(parser, QStringLiteral("uwl"), errorText);
    command.lowerWarningLimit = limitValue(parser, QStringLiteral("lwl"), errorText);
    if (!errorText.isEmpty())
        return false;
    command.clear = parser.isSet(QStringLiteral("clear"));
    const bool anyLimit = command.upperSpecLimit || command.lowerSpecLimit ||
                          command.upperWarningLimit || command.lowerWarningLimit;
    if (command.clear && anyLimit)
        errorText = QStringLiteral("set-limits takes either limits or --clear");
    else if (!command.clear && !anyLimit)
        errorText = QStringLiteral("set-limits needs at least one of --usl, --lsl, --uwl, "
                                   "--lwl, or --clear");
    return errorText.isEmpty();
}

// chart --png FILE or --svg FILE: the picture instead of the figures.
bool readImageFile(const QCommandLineParser &parser, SpcCommand &command, QString &errorText)
{
    const bool png = parser.isSet(QStringLiteral("png"));
    const bool svg = parser.isSet(QStringLiteral("svg"));
    if (png && svg)
        errorText = QStringLiteral("chart draws either --png or --svg");
    else if ((png || svg) && command.csv)
        errorText = QStringLiteral("chart writes either --csv or a picture");
    command.imageFile = png   ? parser.value(QStringLiteral("png"))
                        : svg ? parser.value(QStringLiteral("svg"))
                              : QString();
    return errorText.isEmpty();
}

bool isAnalysis(SpcCommand::Action action)
{
    return action == SpcCommand::Action::Chart || action == SpcCommand::Action::Capability ||
           action == SpcCommand::Action::FreezeLimits;
}

// The characteristic, chart type, baseline and rules of chart, capability and
// freeze-limits.
bool readAnalysis(const QCommandLineParser &parser, SpcCommand &command, QString &errorText)
{
    if (!isAnalysis(command.action))
        return true;
    command.test = parser.value(QStringLiteral("test"));
    if (command.part.isEmpty() || command.process.isEmpty() || command.test.isEmpty()) {
        errorText = QStringLiteral("--part, --process and --test name the characteristic");
        return false;
    }
    if (parser.isSet(QStringLiteral("type"))) {
        command.chartType = spc::chartTypeFromName(parser.value(QStringLiteral("type")));
        if (!command.chartType) {
            errorText = QStringLiteral("--type takes xbar-r, xbar-s or i-mr");
            return false;
        }
    }
    if (parser.isSet(QStringLiteral("baseline"))) {
        bool ok = false;
        command.baseline = parser.value(QStringLiteral("baseline")).toInt(&ok);
        if (!ok || *command.baseline < 2) {
            errorText = QStringLiteral("--baseline needs a number of subgroups, at least 2");
            return false;
        }
    }
    command.frozen = parser.isSet(QStringLiteral("frozen"));
    if (!readImageFile(parser, command, errorText))
        return false;
    if (parser.isSet(QStringLiteral("rules"))) {
        const std::optional<spc::RuleSet> rules =
            spc::RuleSet::parse(parser.value(QStringLiteral("rules")));
        if (!rules) {
            errorText = QStringLiteral("--rules takes rule numbers from 1 to 8, such as 1,2,3,5");
            return false;
        }
        command.rules = *rules;
    }
    if (command.frozen && (command.baseline || command.chartType))
        errorText = QStringLiteral("--frozen takes the chart type and limits that were frozen");
    else if (command.action == SpcCommand::Action::FreezeLimits && !command.baseline &&
             !(command.since.isValid() && command.until.isValid()))
        errorText = QStringLiteral("freeze-limits needs --baseline K or --since and --until");
    return errorText.isEmpty();
}

} // namespace

QString SpcCommandLine::defaultDataSource()
{
    return qlaDatabase6::DataSource::defaultName(ProgramFiles::resolveDataFolder());
}

QString SpcCommandLine::defaultOutbox()
{
    return QDir(ProgramFiles::resolveDataFolder())
        .filePath(QStringLiteral("corvane-monitor.outbox"));
}

QString SpcCommandLine::usage()
{
    return QStringLiteral(
        "Usage: corvane-spc COMMAND [--dsn DSN] ...\n"
        "Looks after the SPC database into which the monitor samples subgroups.\n"
        "\n"
        "Commands:\n"
        "  init                              create the tables, or bring them forward\n"
        "  add-group NAME\n"
        "  add-part NAME [--group G]\n"
        "  add-process NAME [--group G]\n"
        "  add-test NAME\n"
        "  set-limits PART TEST [--usl X] [--lsl X] [--uwl X] [--lwl X] | --clear\n"
        "  list groups|parts|processes|tests|limits|control-limits\n"
        "  subgroups [--part P] [--process P] [--since ISO-DATE] [--csv]\n"
        "  chart --part P --process Q --test T [--since D] [--until D]\n"
        "        [--type xbar-r|xbar-s|i-mr] [--baseline K | --frozen] [--rules 1,2,3,5]\n"
        "        [--csv | --png FILE | --svg FILE]\n"
        "  capability --part P --process Q --test T [--since D] [--until D] [--csv]\n"
        "  freeze-limits --part P --process Q --test T (--baseline K | --since D --until D)\n"
        "        [--type xbar-r|xbar-s|i-mr]\n"
        "  import FILE|-                     store the subgroups of a subgroups --csv report\n"
        "  outbox [--outbox FILE] [--flush | --discard]\n"
        "                                    list the subgroups waiting for their database,\n"
        "                                    forward them, or drop them (with --dsn: only\n"
        "                                    those of that database)\n"
        "\n"
        "DSN is a SQLite file (PATH or sqlite:PATH) or postgresql://[user@]host[:port]/db;\n"
        "the server's password comes from PGPASSWORD or the password file. Without --dsn\n"
        "the database is spc.db in the data folder (CORVANE_DATA_DIR).\n");
}

std::optional<SpcCommand> SpcCommandLine::parse(const QStringList &arguments, QString &errorText)
{
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({QStringLiteral("dsn"), QString(), QStringLiteral("DSN")});
    for (const QString &name : kAllOptions) {
        parser.addOption(isFlag(name)
                             ? QCommandLineOption(name)
                             : QCommandLineOption(name, QString(), QStringLiteral("VALUE")));
    }
    if (!parser.parse(arguments)) {
        errorText = parser.errorText();
        return std::nullopt;
    }
    SpcCommand command;
    QStringList positionals = parser.positionalArguments();
    if (parser.isSet(QStringLiteral("help")))
        return command;
    if (positionals.isEmpty()) {
        errorText = QStringLiteral("no command given");
        return std::nullopt;
    }
    const QString word = positionals.takeFirst();
    const ActionRule *rule = nullptr;
    for (const ActionRule &candidate : actionRules())
        if (word == QLatin1String(candidate.word))
            rule = &candidate;
    if (!rule) {
        errorText = QStringLiteral("unknown command \"%1\"").arg(word);
        return std::nullopt;
    }
    for (const QString &option : kAllOptions) {
        if (parser.isSet(option) && !rule->options.contains(option)) {
            errorText = QStringLiteral("%1 does not take --%2").arg(word, option);
            return std::nullopt;
        }
    }
    if (positionals.size() != rule->positionals) {
        errorText = QStringLiteral("%1 takes %2 argument(s)").arg(word).arg(rule->positionals);
        return std::nullopt;
    }

    command.action = rule->action;
    command.names = positionals;
    command.defaultDsn = !parser.isSet(QStringLiteral("dsn"));
    command.dsn = command.defaultDsn ? defaultDataSource() : parser.value(QStringLiteral("dsn"));
    command.group = parser.value(QStringLiteral("group"));
    command.part = parser.value(QStringLiteral("part"));
    command.process = parser.value(QStringLiteral("process"));
    command.csv = parser.isSet(QStringLiteral("csv"));
    command.outboxPath = parser.isSet(QStringLiteral("outbox"))
                             ? parser.value(QStringLiteral("outbox"))
                             : defaultOutbox();
    command.flush = parser.isSet(QStringLiteral("flush"));
    command.discard = parser.isSet(QStringLiteral("discard"));
    if (command.flush && command.discard) {
        errorText = QStringLiteral("outbox takes either --flush or --discard");
        return std::nullopt;
    }

    if (command.action == SpcCommand::Action::SetLimits && !readLimits(parser, command, errorText))
        return std::nullopt;
    if (command.action == SpcCommand::Action::List) {
        static const QStringList kLists = {
            QStringLiteral("groups"), QStringLiteral("parts"),  QStringLiteral("processes"),
            QStringLiteral("tests"),  QStringLiteral("limits"), QStringLiteral("control-limits")};
        if (!kLists.contains(command.names.constFirst())) {
            errorText = QStringLiteral(
                "list takes groups, parts, processes, tests, limits or control-limits");
            return std::nullopt;
        }
    }
    for (const bool until : {false, true}) {
        const QString name = until ? QStringLiteral("until") : QStringLiteral("since");
        if (!parser.isSet(name))
            continue;
        (until ? command.until : command.since) = timeValue(parser.value(name), until);
        if (!(until ? command.until : command.since).isValid()) {
            errorText = QStringLiteral("--%1 needs an ISO 8601 date, such as 2026-11-14 or "
                                       "2026-11-14T22:05:00")
                            .arg(name);
            return std::nullopt;
        }
    }
    if (!readAnalysis(parser, command, errorText))
        return std::nullopt;
    return command;
}

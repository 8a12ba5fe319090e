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

const std::array<ActionRule, 10> &actionRules()
{
    static const std::array<ActionRule, 10> rules = {{
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
        {"outbox",
         SpcCommand::Action::Outbox,
         0,
         {QStringLiteral("outbox"), QStringLiteral("flush"), QStringLiteral("discard")}},
        {"help", SpcCommand::Action::Help, 0, {}},
    }};
    return rules;
}

const QStringList kAllOptions = {
    QStringLiteral("group"),  QStringLiteral("usl"),     QStringLiteral("lsl"),
    QStringLiteral("uwl"),    QStringLiteral("lwl"),     QStringLiteral("clear"),
    QStringLiteral("part"),   QStringLiteral("process"), QStringLiteral("since"),
    QStringLiteral("csv"),    QStringLiteral("outbox"),  QStringLiteral("flush"),
    QStringLiteral("discard")};

bool isFlag(const QString &name)
{
    static const QStringList kFlags = {QStringLiteral("clear"), QStringLiteral("csv"),
                                       QStringLiteral("flush"), QStringLiteral("discard")};
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

QDateTime sinceValue(const QString &text)
{
    QDateTime time = QDateTime::fromString(text, Qt::ISODateWithMs);
    if (!time.isValid()) {
        const QDate date = QDate::fromString(text, Qt::ISODate);
        if (date.isValid())
            time = date.startOfDay();
    }
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
        "  list groups|parts|processes|tests|limits\n"
        "  subgroups [--part P] [--process P] [--since ISO-DATE] [--csv]\n"
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
        static const QStringList kLists = {QStringLiteral("groups"), QStringLiteral("parts"),
                                           QStringLiteral("processes"), QStringLiteral("tests"),
                                           QStringLiteral("limits")};
        if (!kLists.contains(command.names.constFirst())) {
            errorText = QStringLiteral("list takes groups, parts, processes, tests or limits");
            return std::nullopt;
        }
    }
    if (parser.isSet(QStringLiteral("since"))) {
        command.since = sinceValue(parser.value(QStringLiteral("since")));
        if (!command.since.isValid()) {
            errorText = QStringLiteral("--since needs an ISO 8601 date, such as 2026-11-14 or "
                                       "2026-11-14T22:05:00");
            return std::nullopt;
        }
    }
    return command;
}

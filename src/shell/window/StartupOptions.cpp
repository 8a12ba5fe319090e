#include "StartupOptions.h"

#include <cstring>

std::optional<StartupOptions> StartupOptions::parse(const QStringList &arguments,
                                                    QString *errorText)
{
    StartupOptions options;
    QStringList rest;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        if (i > 0 && argument == QLatin1String("--start")) {
            options.startCollecting = true;
            continue;
        }
        if (i > 0 && argument.startsWith(QLatin1String("--lang="))) {
            options.language = argument.mid(7);
        } else if (i > 0 && argument == QLatin1String("--lang")) {
            if (i + 1 >= arguments.size()) {
                if (errorText)
                    *errorText = QStringLiteral("--lang needs a language, such as de.");
                return std::nullopt;
            }
            options.language = arguments.at(++i);
        } else {
            rest.append(argument);
            continue;
        }
        if (options.language.isEmpty()) {
            if (errorText)
                *errorText = QStringLiteral("--lang needs a language, such as de.");
            return std::nullopt;
        }
    }
    std::optional<HeadlessOptions> program = HeadlessOptions::parse(rest, errorText);
    if (!program)
        return std::nullopt;
    options.program = *program;
    return options;
}

QString StartupOptions::usage()
{
    return HeadlessOptions::usage() +
           QStringLiteral("  --lang LANG     Language of the window (de German, en English); the\n"
                          "                  desktop's language when not given.\n"
                          "  --start         Start collecting from every welder at once.\n"
                          "\n"
                          "One instance runs per desktop user: a second start asks the running\n"
                          "one to show its window and ends.\n");
}

bool StartupOptions::asksForHeadless(int argc, char *argv[])
{
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--headless") == 0)
            return true;
    }
    return false;
}

// corvane-spc: looks after the SPC database into which the monitor samples subgroups.

#include "OutboxCommand.h"
#include "SpcCommandLine.h"
#include "SpcTool.h"

#include "platform/BinaryStreams.h"
#include "platform/Clock.h"
#include "platform/ProgramError.h"
#include "platform/ProgramFiles.h"
#include "platform/spc/SqlDatabase.h"

#include <QCoreApplication>
#ifdef CORVANE_HAVE_CHARTS
#include <QApplication>
#endif
#include <QDir>
#include <QTextStream>

#include <cstdio>
#include <memory>

namespace {

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kUsage = 2;

int failed(const QString &message)
{
    // One line, whatever the server's message looked like.
    std::fprintf(stderr, "corvane-spc: %s\n", qPrintable(message.simplified()));
    return kFailed;
}

#ifdef CORVANE_HAVE_CHARTS
bool drawsPicture(int argc, char *argv[])
{
    for (int i = 1; i < argc; ++i)
        if (qstrcmp(argv[i], "--png") == 0 || qstrcmp(argv[i], "--svg") == 0 ||
            qstrncmp(argv[i], "--png=", 6) == 0 || qstrncmp(argv[i], "--svg=", 6) == 0)
            return true;
    return false;
}
#endif

std::unique_ptr<QCoreApplication> applicationFor(int &argc, char *argv[])
{
#ifdef CORVANE_HAVE_CHARTS
    if (drawsPicture(argc, argv)) {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        return std::make_unique<QApplication>(argc, argv);
    }
#endif
    return std::make_unique<QCoreApplication>(argc, argv);
}

} // namespace

int main(int argc, char *argv[])
{
    // Drawing a chart into a picture needs the widgets' application, without a screen.
    const std::unique_ptr<QCoreApplication> app = applicationFor(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("corvane-spc"));
    // The same report and CSV bytes on every platform.
    useBinaryStandardStreams();

    QString problem;
    const std::optional<SpcCommand> command =
        SpcCommandLine::parse(QCoreApplication::arguments(), problem);
    if (!command) {
        std::fprintf(stderr, "corvane-spc: %s\n\n%s", qPrintable(problem),
                     qPrintable(SpcCommandLine::usage()));
        return kUsage;
    }
    if (command->action == SpcCommand::Action::Help) {
        std::printf("%s", qPrintable(SpcCommandLine::usage()));
        return kDone;
    }
    QTextStream out(stdout);
    if (command->action == SpcCommand::Action::Outbox) {
        try {
            return runOutboxCommand(*command, out);
        } catch (const ProgramError &error) {
            out.flush();
            return failed(error.description());
        }
    }
    if (command->defaultDsn)
        QDir().mkpath(ProgramFiles::resolveDataFolder());

    qlaDatabase6::SqlDatabase database;
    database.setDataSourceName(command->dsn);
    if (!database.openConnection())
        return failed(database.lastErrorText());
    try {
        const SystemClock clock;
        SpcTool(database, out, clock).run(*command);
    } catch (const ProgramError &error) {
        out.flush();
        return failed(error.description());
    }
    return kDone;
}

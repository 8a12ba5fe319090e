// corvane-sim: plays power supplies that send one Function 26 weld record after every
// simulated weld, over TCP, a serial line, a pseudo-terminal or into a capture file.

#include "SimOptions.h"
#include "SimRunner.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("corvane-sim"));

    QString problem;
    const std::optional<SimOptions> options =
        SimOptions::parse(QCoreApplication::arguments(), &problem);
    if (!options) {
        std::fprintf(stderr, "corvane-sim: %s\n", qPrintable(problem));
        return 2;
    }
    if (options->help) {
        std::printf("%s", qPrintable(SimOptions::helpText()));
        return 0;
    }

    SimRunner runner(*options);
    if (!runner.open(&problem)) {
        std::fprintf(stderr, "corvane-sim: %s\n", qPrintable(problem));
        return SimRunner::kFailed;
    }
    QObject::connect(&runner, &SimRunner::done, &app, &QCoreApplication::exit,
                     Qt::QueuedConnection);
    runner.start();
    return app.exec();
}

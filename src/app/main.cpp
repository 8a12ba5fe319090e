// corvane-monitor: watches the power supplies of the configured welders and logs every
// weld they report.

#include "shell/HeadlessOptions.h"
#include "shell/HeadlessRunner.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("corvane-monitor"));

    QString error;
    const std::optional<HeadlessOptions> options =
        HeadlessOptions::parse(QCoreApplication::arguments(), &error);
    if (!options) {
        std::fprintf(stderr, "corvane-monitor: %s\n%s", qPrintable(error),
                     qPrintable(HeadlessOptions::usage()));
        return 2;
    }
    if (options->help) {
        std::printf("%s", qPrintable(HeadlessOptions::usage()));
        return 0;
    }
    if (!options->headless)
        std::fprintf(stderr, "corvane-monitor: the main window is not available yet; "
                             "running headless.\n");
    HeadlessRunner runner(*options);
    return runner.exec();
}

// corvane-monitor: watches the power supplies of the configured welders and logs every
// weld they report, in the main window or, with --headless, without one.

#include "platform/ProgramFiles.h"
#include "shell/HeadlessRunner.h"
#include "shell/ShellSettings.h"
#include "shell/window/DesktopProgram.h"
#include "shell/window/ProgramVersion.h"
#include "shell/window/SingleInstance.h"
#include "shell/window/StartupOptions.h"

#include <QApplication>
#include <QDir>

#include <cstdio>
#include <memory>

int main(int argc, char *argv[])
{
    // A headless run must not need a display, so the kind of application is chosen first.
    const bool headless = StartupOptions::asksForHeadless(argc, argv);
    const std::unique_ptr<QCoreApplication> app =
        headless ? std::make_unique<QCoreApplication>(argc, argv)
                 : std::make_unique<QApplication>(argc, argv);
    QCoreApplication::setApplicationName(QLatin1String(ProgramVersion::kProgramName));
    QCoreApplication::setApplicationVersion(QLatin1String(ProgramVersion::kVersion));

    QString error;
    const std::optional<StartupOptions> options =
        StartupOptions::parse(QCoreApplication::arguments(), &error);
    if (!options) {
        std::fprintf(stderr, "corvane-monitor: %s\n%s", qPrintable(error),
                     qPrintable(StartupOptions::usage()));
        return 2;
    }
    if (options->program.help) {
        std::printf("%s", qPrintable(StartupOptions::usage()));
        return 0;
    }

    // One instance per desktop and data folder: a later window start hands over to the
    // running one and ends without a window, a file read or a message. A headless start
    // is a service that was meant to run, so it says why it does not.
    const QString title = ShellSettings::applicationTitle(*ShellSettings::openSettingsStore());
    const QString dataFolder = ProgramFiles::resolveDataFolder(options->program.dataFolder);
    SingleInstance instance(title, dataFolder);
    if (!instance.acquire()) {
        if (!headless) {
            instance.activateRunningInstance();
            return 0;
        }
        std::fprintf(stderr, "corvane-monitor: an instance already runs on the data folder %s.\n",
                     qPrintable(QDir::toNativeSeparators(dataFolder)));
        return 1;
    }

    if (!headless)
        return DesktopProgram::run(*options, title, instance);
    QObject::connect(&instance, &SingleInstance::activationRequested, [] {
        std::fprintf(stderr, "corvane-monitor: another start asked for this instance, which "
                             "runs headless and has no window to show.\n");
    });
    HeadlessRunner runner(options->program);
    return runner.exec();
}

#include "DesktopProgram.h"

#include "DesktopServices.h"
#include "InstalledFiles.h"
#include "SingleInstance.h"
#include "StartupOptions.h"
#include "dlgMain.h"

#include "platform/ErrorPassing.h"
#include "shell/BrokerPublishing.h"
#include "shell/TerminationSignals.h"

#include <QApplication>
#include <QLabel>
#include <QLoggingCategory>
#include <QSessionManager>
#include <QStatusBar>
#include <QTranslator>

Q_LOGGING_CATEGORY(lcDesktop, "corvane.desktop")

namespace DesktopProgram {

namespace {

// The broker connection in the main window's status bar, when a broker is set.
void showBrokerState(dlgMain &window, const DesktopServices &services)
{
    BrokerPublishing *broker = services.brokerPublishing();
    if (!broker && services.brokerNotice().isEmpty())
        return;
    auto *label = new QLabel(broker ? broker->stateText() : services.brokerNotice());
    label->setObjectName(QStringLiteral("lblBroker"));
    window.statusBar()->addPermanentWidget(label);
    if (broker)
        QObject::connect(broker, &BrokerPublishing::stateTextChanged, label, &QLabel::setText);
}

} // namespace

int run(const StartupOptions &options, const QString &applicationTitle, SingleInstance &instance)
{
    // The window closes into the tray; only Shut Down ends the program.
    QApplication::setQuitOnLastWindowClosed(false);

    QTranslator qtTexts;
    if (InstalledFiles::loadQtTexts(qtTexts, InstalledFiles::chosenLanguage(options.language)))
        QCoreApplication::installTranslator(&qtTexts);
    DesktopServices services(options, applicationTitle, QCoreApplication::applicationDirPath());
    dlgMain window(services.windowServices());
    TerminationSignals termination;

    bool started = reportFailures(services.errors(), "CorvaneUSWSupport.Main", [&] {
        QObject::connect(&window, &dlgMain::unloaded, qApp, &QCoreApplication::quit,
                         Qt::QueuedConnection);
        QObject::connect(&instance, &SingleInstance::activationRequested, &window, [&window] {
            window.restoreWindow();
            qCInfo(lcDesktop, "Another start asked for this instance: window restored and raised");
        });
        // The end of the desktop session saves as Shut Down does; so does a termination
        // request (the system shutting down, a service manager stopping the program).
        QObject::connect(
            qApp, &QGuiApplication::commitDataRequest, &window,
            [&window](QSessionManager &) { window.Form_QueryUnload(dlgMain::AppWindows); });
        QObject::connect(&termination, &TerminationSignals::terminationRequested, &window,
                         [&window] { window.Form_QueryUnload(dlgMain::TaskManager); });
        showBrokerState(window, services);
        window.Form_Load();
        window.show();
    });
    if (started && options.startCollecting)
        window.startEveryConfiguration();
    if (!started)
        return 1;
    const int status = QApplication::exec();
    // Whatever ended the event loop, the configurations are saved once.
    window.Form_QueryUnload(dlgMain::TaskManager);
    if (BrokerPublishing *broker = services.brokerPublishing())
        broker->finish();
    return status;
}

} // namespace DesktopProgram

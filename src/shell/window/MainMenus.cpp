#include "MainMenus.h"

#include "platform/qlxLanguage.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

namespace {

QAction *item(QMenu *menu, const char *name)
{
    QAction *action = menu->addAction(QString());
    action->setObjectName(QLatin1String(name));
    return action;
}

QMenu *menu(QWidget *parent, const char *name)
{
    auto *created = new QMenu(parent);
    created->setObjectName(QLatin1String(name));
    return created;
}

} // namespace

void MainMenus::build(QMainWindow *window)
{
    QMenuBar *bar = window->menuBar();

    mnuFile = menu(bar, "mnuFile");
    mnuCloseWindow = item(mnuFile, "mnuCloseWindow");
    mnuFile->addSeparator();
    mnuShutDown = item(mnuFile, "mnuShutDown");
    bar->addMenu(mnuFile);

    mnuConfiguration = menu(bar, "mnuConfiguration");
    mnuAdd = item(mnuConfiguration, "mnuAdd");
    mnuRemove = item(mnuConfiguration, "mnuRemove");
    mnuConfiguration->addSeparator();
    mnuSettings = item(mnuConfiguration, "mnuSettings");
    mnuConfiguration->addSeparator();
    mnuDataLogging = item(mnuConfiguration, "mnuDataLogging");
    mnuConfiguration->addSeparator();
    mnuSPCSampling = item(mnuConfiguration, "mnuSPCSampling");
    mnuControlChart = item(mnuConfiguration, "mnuControlChart");
    // Start/Stop stands apart at the end so that the settings items keep the positions
    // users know, and F5 reaches it from anywhere.
    mnuConfiguration->addSeparator();
    mnuStartStop = item(mnuConfiguration, "mnuStartStop");
    mnuStartStop->setShortcut(QKeySequence(Qt::Key_F5));
    bar->addMenu(mnuConfiguration);

    mnuHelp = menu(bar, "mnuHelp");
    mnuContents = item(mnuHelp, "mnuContents");
    mnuContents->setShortcut(QKeySequence::HelpContents);
    mnuGettingStarted = item(mnuHelp, "mnuGettingStarted");
    mnuHelp->addSeparator();
    mnuAboutApp = item(mnuHelp, "mnuAboutApp");
    mnuAboutDB = item(mnuHelp, "mnuAboutDB");
    bar->addMenu(mnuHelp);

    mnuPopup = menu(window, "mnuPopup");
    mnuOpenWindow = item(mnuPopup, "mnuOpenWindow");
    mnuPopup->addSeparator();
    mnuViewErrorLog = item(mnuPopup, "mnuViewErrorLog");
    mnuPopup->addSeparator();
    mnuShutDown2 = item(mnuPopup, "mnuShutDown2");
    mnuPopup->setDefaultAction(mnuOpenWindow);
}

void MainMenus::translateCaptions(const qlxLanguage &language)
{
    const auto caption = [&language](QStringView token) { return language.Translate(token); };
    mnuFile->setTitle(caption(u"46|&File"));
    mnuCloseWindow->setText(caption(u"3790|Close &Window"));
    mnuShutDown->setText(caption(u"3791|Shut &Down..."));

    mnuConfiguration->setTitle(caption(u"1072|&Configuration"));
    mnuAdd->setText(caption(u"391|&Add..."));
    mnuRemove->setText(caption(u"1076|&Remove"));
    mnuSettings->setText(caption(u"6336|&Equipment Settings..."));
    mnuDataLogging->setText(caption(u"6335|&Data Logging..."));
    mnuSPCSampling->setText(caption(u"6337|SP&C Sampling..."));
    mnuControlChart->setText(caption(u"7630|Control C&hart..."));
    showStartStop(language, false);

    mnuHelp->setTitle(caption(u"303|&Help"));
    mnuContents->setText(caption(u"432|&Contents"));
    mnuGettingStarted->setText(caption(u"1092|&Getting Started"));
    mnuAboutApp->setText(caption(u"762|&About Application..."));
    mnuAboutDB->setText(caption(u"436|About &Data Source"));

    mnuOpenWindow->setText(caption(u"403|&Open"));
    mnuViewErrorLog->setText(caption(u"3736|&View Log..."));
    mnuShutDown2->setText(caption(u"3791|S&hut Down..."));
}

void MainMenus::showStartStop(const qlxLanguage &language, bool collecting)
{
    mnuStartStop->setText(collecting ? language.Translate(u"929|&Stop")
                                     : language.Translate(u"3786|&Start"));
}

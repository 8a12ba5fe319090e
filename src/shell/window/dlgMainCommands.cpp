// The main window's commands: the menus, the tray and the automatic Add of a first start.

#include "dlgMain.h"

#include "ConfigurationCommands.h"
#include "HelpModule.h"
#include "dlgSplash.h"

#include "platform/ErrorPassing.h"
#include "sampling/DatabaseSupport.h"

#include <QAction>
#include <QMenu>
#include <QStackedWidget>
#include <QTimer>

void dlgMain::mnuCloseWindow_Click()
{
    reportFailures(m_services.errors, "dlgMain.mnuCloseWindow_Click", [&] { hide(); });
}

void dlgMain::mnuShutDown_Click()
{
    // No confirmation is asked: the caption's "..." promises more than the command does.
    reportFailures(m_services.errors, "dlgMain.mnuShutDown_Click",
                   [&] { Form_QueryUnload(FormCode); });
}

void dlgMain::mnuConfiguration_Click()
{
    reportFailures(m_services.errors, "dlgMain.mnuConfiguration_Click", [&] {
        const int slot = selectedSlot();
        const bool selected = slot >= 0;
        ConfigurationMonitor *monitor = selected ? &m_configurations->monitor(slot) : nullptr;
        // A configuration that collects keeps its settings until it is stopped.
        const bool idle = selected && monitor->DriverState() == 1;
        for (QAction *item : {m_menus.mnuRemove, m_menus.mnuSettings, m_menus.mnuDataLogging,
                              m_menus.mnuSPCSampling, m_menus.mnuAboutApp})
            item->setEnabled(idle);
        m_menus.mnuAboutDB->setEnabled(selected && monitor->SPCSamplingEnabled());
        m_menus.mnuStartStop->setEnabled(selected);
        m_menus.showStartStop(m_language, selected && monitor->DriverState() > 1);
    });
}

void dlgMain::mnuAdd_Click()
{
    reportFailures(m_services.errors, "dlgMain.mnuAdd_Click", [&] {
        const QString key = m_configurations->AddConfiguration(QString());
        if (key.isEmpty())
            return;
        ActivateConfiguration(key);
        mnuSettings_Click();
    });
}

void dlgMain::mnuRemove_Click()
{
    reportFailures(m_services.errors, "dlgMain.mnuRemove_Click", [&] {
        const int slot = selectedSlot();
        if (slot < 0)
            return;
        const int tab = m_configurations->currentTab();
        m_configurations->monitor(slot).ShutDown();
        m_monitors->setCurrentWidget(m_emptyPage);
        // The tab now at the removed one's position is selected, or the new last tab.
        m_configurations->removeTab(tab);
    });
}

void dlgMain::mnuSettings_Click()
{
    reportFailures(m_services.errors, "dlgMain.mnuSettings_Click", [&] {
        const int slot = selectedSlot();
        if (slot < 0)
            return;
        ConfigurationMonitor &monitor = m_configurations->monitor(slot);
        if (m_services.commands.ConfigureEquipment(monitor, commandContext())) {
            const int tab = m_configurations->currentTab();
            if (tab >= 0)
                m_configurations->setTabCaption(tab, monitor.configurationName());
        }
    });
}

void dlgMain::mnuDataLogging_Click()
{
    reportFailures(m_services.errors, "dlgMain.mnuDataLogging_Click", [&] {
        const int slot = selectedSlot();
        if (slot >= 0)
            m_services.commands.ConfigureDataLogging(m_configurations->monitor(slot),
                                                     commandContext());
    });
}

void dlgMain::mnuSPCSampling_Click()
{
    reportFailures(m_services.errors, "dlgMain.mnuSPCSampling_Click", [&] {
        const int slot = selectedSlot();
        if (slot >= 0)
            m_services.commands.ConfigureSampling(m_configurations->monitor(slot),
                                                  commandContext());
    });
}

void dlgMain::mnuStartStop_Click()
{
    reportFailures(m_services.errors, "dlgMain.mnuStartStop_Click", [&] {
        const int slot = selectedSlot();
        if (slot >= 0)
            m_configurations->monitor(slot).StartStop();
    });
}

void dlgMain::startEveryConfiguration()
{
    if (!m_configurations)
        return;
    for (int slot = 0; slot < m_configurations->slotCount(); ++slot) {
        ConfigurationMonitor &monitor = m_configurations->monitor(slot);
        if (monitor.DriverState() == 1)
            reportFailures(m_services.errors, "dlgMain.mnuStartStop_Click",
                           [&] { monitor.StartDataCollection(); });
    }
}

void dlgMain::mnuContents_Click()
{
    reportFailures(m_services.errors, "dlgMain.mnuContents_Click",
                   [&] { m_services.help.ShowHelp(HelpModule::kContents); });
}

void dlgMain::mnuGettingStarted_Click()
{
    reportFailures(m_services.errors, "dlgMain.mnuGettingStarted_Click",
                   [&] { m_services.help.ShowHelp(HelpModule::kGettingStarted); });
}

void dlgMain::mnuAboutApp_Click()
{
    reportFailures(m_services.errors, "dlgMain.mnuAboutApp_Click", [&] {
        dlgSplash about(m_services.settings, this);
        about.setLanguage(m_language);
        about.Form_Load();
        about.exec();
    });
}

void dlgMain::mnuAboutDB_Click()
{
    // The item only tells, by being enabled, that the selected configuration samples
    // into an SPC database; it has no action of its own.
}

void dlgMain::mnuOpenWindow_Click()
{
    reportFailures(m_services.errors, "dlgMain.mnuOpenWindow_Click", [&] { restoreWindow(); });
}

void dlgMain::mnuViewErrorLog_Click()
{
    reportFailures(m_services.errors, "dlgMain.mnuViewErrorLog_Click",
                   [&] { m_services.database.ViewErrorLog(); });
}

void dlgMain::moAutoAdd_Timer()
{
    reportFailures(m_services.errors, "dlgMain.moAutoAdd_Timer", [&] {
        m_autoAdd->stop();
        mnuAdd_Click();
    });
}

void dlgMain::moTray_Click()
{
    reportFailures(m_services.errors, "dlgMain.moTray_Click", [&] { restoreWindow(); });
}

void dlgMain::restoreWindow()
{
    if (m_unloaded)
        return;
    if (isMinimized())
        showNormal();
    else
        show();
    raise();
    activateWindow();
}

ConfigurationCommands::Context dlgMain::commandContext()
{
    return {m_language, m_files.measurementSystem, this};
}

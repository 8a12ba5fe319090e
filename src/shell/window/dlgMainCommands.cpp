// The main window's commands: the menus, the tray and the automatic Add of a first start.

#include "dlgMain.h"

#include "ConfigurationCommands.h"
#include "HelpModule.h"
#include "dlgSplash.h"

#include "platform/ErrorPassing.h"
#include "platform/MessageBoxes.h"
#include "platform/spc/DataSource.h"
#include "sampling/DatabaseSupport.h"

#include <QAction>
#include <QDir>
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
        // A welder without a name and address is of no use: Cancel takes the new
        // configuration back, so that the next start offers Add again.
        if (!configureSelected())
            removeSelected();
    });
}

void dlgMain::mnuRemove_Click()
{
    reportFailures(m_services.errors, "dlgMain.mnuRemove_Click", [&] { removeSelected(); });
}

void dlgMain::removeSelected()
{
    const int slot = selectedSlot();
    if (slot < 0)
        return;
    const int tab = m_configurations->currentTab();
    m_configurations->monitor(slot).ShutDown();
    m_monitors->setCurrentWidget(m_emptyPage);
    // The tab now at the removed one's position is selected, or the new last tab.
    m_configurations->removeTab(tab);
}

void dlgMain::mnuSettings_Click()
{
    reportFailures(m_services.errors, "dlgMain.mnuSettings_Click", [&] { configureSelected(); });
}

bool dlgMain::configureSelected()
{
    const int slot = selectedSlot();
    if (slot < 0)
        return false;
    ConfigurationMonitor &monitor = m_configurations->monitor(slot);
    if (!m_services.commands.ConfigureEquipment(monitor, commandContext()))
        return false;
    const int tab = m_configurations->currentTab();
    if (tab >= 0)
        m_configurations->setTabCaption(tab, monitor.configurationName());
    return true;
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

void dlgMain::mnuControlChart_Click()
{
    reportFailures(m_services.errors, "dlgMain.mnuControlChart_Click", [&] {
        // The database the selected configuration samples into, else the program's own.
        const int slot = selectedSlot();
        QString dataSource =
            slot >= 0 ? m_configurations->monitor(slot).dataSource().name : QString();
        if (dataSource.isEmpty())
            dataSource = qlaDatabase6::DataSource::defaultName(m_services.dataFolder);
        m_services.chooseControlChart(m_language, dataSource, this);
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
                   [&] { showHelp(HelpModule::kContents); });
}

void dlgMain::mnuGettingStarted_Click()
{
    reportFailures(m_services.errors, "dlgMain.mnuGettingStarted_Click",
                   [&] { showHelp(HelpModule::kGettingStarted); });
}

void dlgMain::showHelp(int topic)
{
    if (m_services.help.ShowHelp(topic))
        return;
    tell(m_language
             .Translate(u"7060|The help page %1 cannot be opened: this computer has no web "
                        u"browser, or does not allow the program to start one.")
             .arg(QDir::toNativeSeparators(m_services.help.topicUrl(topic).toLocalFile())));
}

void dlgMain::tell(const QString &text)
{
    m_services.messages.critical(m_services.applicationTitle, text);
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
    // Enabled only while the selected configuration samples into an SPC database: which
    // database that is, and whether the monitor reaches it now.
    reportFailures(m_services.errors, "dlgMain.mnuAboutDB_Click", [&] {
        const int slot = selectedSlot();
        if (slot < 0)
            return;
        const DataSourceState source = m_configurations->monitor(slot).dataSource();
        qlaDatabase6::DataSource parsed;
        QString problem;
        const bool known = qlaDatabase6::DataSource::parse(source.name, parsed, problem);
        const QString kind =
            !known ? problem
            : parsed.kind() == qlaDatabase6::DataSource::Kind::SQLite
                ? m_language.Translate(u"7301|A file on this workstation (SQLite)")
                : m_language.Translate(u"7302|The plant's database server (PostgreSQL)");
        const QString state = source.connected ? m_language.Translate(u"6052|Connected")
                                               : m_language.Translate(u"7057|Not connected");
        m_services.messages.critical(m_language.Translate(u"436|About Data Source"),
                                     m_language.Translate(u"7310|Data source name: ") +
                                         source.name + u'\n' +
                                         m_language.Translate(u"7053|Kind: ") + kind + u'\n' +
                                         m_language.Translate(u"7054|State: ") + state);
    });
}

void dlgMain::mnuOpenWindow_Click()
{
    reportFailures(m_services.errors, "dlgMain.mnuOpenWindow_Click", [&] { restoreWindow(); });
}

void dlgMain::mnuViewErrorLog_Click()
{
    reportFailures(m_services.errors, "dlgMain.mnuViewErrorLog_Click", [&] {
        const QString problem =
            m_services.database.logViewProblem(m_services.database.ViewErrorLog(), m_language);
        if (!problem.isEmpty())
            tell(problem);
    });
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

#pragma once

#include "ConfigurationCommands.h"
#include "MainMenus.h"
#include "MainWindowServices.h"

#include "platform/qlxLanguage.h"
#include "shell/ConfigurationSet.h"
#include "shell/ShellFiles.h"

#include <QMainWindow>
#include <QPointer>

#include <memory>
#include <vector>

class OverviewPage;
class QStackedWidget;
class QToolButton;
class QSystemTrayIcon;
class QTabBar;
class QTimer;
class WelderStatus;

// The program's only top-level window: one tab per configuration with that welder's
// monitor below the tabs, the menus that add, remove and set up configurations, and
// the tray icon through which the program lives on while the window is closed. The
// configurations themselves (the file, the monitor slots, the tab list) are kept by a
// ConfigurationSet; the window shows its tabs and forwards the user's commands.
//
// The program ends only through Shut Down or the end of the desktop session: then the
// configurations file is written and every monitor shut down. The close box only hides
// the window.
class dlgMain : public QMainWindow
{
    Q_OBJECT

public:
    // Why the window is asked to unload.
    enum UnloadMode {
        FormControlMenu = 0, // the window's close box
        FormCode = 1,        // Shut Down
        AppWindows = 2,      // the end of the desktop session
        TaskManager = 3,     // a termination request from outside
    };

    static constexpr int kAutoAddDelayMs = 1000;
    // From this many welders on, the window opens on the overview.
    static constexpr int kOverviewFirstFrom = 8;

    explicit dlgMain(MainWindowServices services, QWidget *parent = nullptr);
    ~dlgMain() override;

    // The window's load: the language and captions, the files and the measurement
    // system, the configurations, the tray icon, and the first tab or the automatic Add.
    void Form_Load();
    // Returns true when the unload is cancelled (the close box hides the window);
    // otherwise saves, shuts every monitor down and emits unloaded(), once.
    bool Form_QueryUnload(UnloadMode mode);

    // Tabs, through the configuration set.
    const ConfigurationTab *GetTab(const QString &key) const;
    void ActivateConfiguration(const QString &key);
    int ConfigurationCount() const;

    // Event procedures: menu commands, the tray, the tab strip and the timer.
    void mnuCloseWindow_Click();
    void mnuShutDown_Click();
    void mnuConfiguration_Click();
    void mnuAdd_Click();
    void mnuRemove_Click();
    void mnuSettings_Click();
    void mnuDataLogging_Click();
    void mnuSPCSampling_Click();
    void mnuControlChart_Click();
    void mnuStartStop_Click();
    void mnuContents_Click();
    void mnuGettingStarted_Click();
    void mnuAboutApp_Click();
    void mnuAboutDB_Click();
    void mnuOpenWindow_Click();
    void mnuViewErrorLog_Click();
    void moAutoAdd_Timer();
    void moTray_Click();
    void TabStrip1_Click();
    // Starts data collection on every configuration that is stopped.
    void startEveryConfiguration();
    // Another start of the program asked for this window: shown, restored and raised.
    void restoreWindow();

    ConfigurationSet *configurations() const { return m_configurations.get(); }
    const ShellFiles &files() const { return m_files; }
    const qlxLanguage &language() const { return m_language; }
    const MainMenus &menus() const { return m_menus; }
    QTabBar *tabStrip() const { return m_tabStrip; }
    QSystemTrayIcon *trayIcon() const { return m_tray; }
    // Made only when the load found no configuration.
    QTimer *autoAddTimer() const { return m_autoAdd; }
    // The face of a slot's monitor.
    QWidget *monitorView(int slotIndex) const;
    bool isUnloaded() const { return m_unloaded; }
    // Whether closing the window has said that the program keeps running.
    bool trayNoticeGiven() const { return m_trayNoticeGiven; }
    WelderStatus *welderStatus() const { return m_status; }

signals:
    // The window has saved and shut its monitors down: the program may end.
    void unloaded();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void buildControls();
    void connectCommands();
    void translateCaptions();
    void loadLanguage();
    void createConfigurations();
    void createTray();
    MonitorSlot makeSlot(int slotIndex);

    // Mirrors of the configuration set's tab list.
    void tabAdded(int index);
    void tabRemoved(int index);
    void tabCaptionChanged(int index);
    void currentTabChanged(int index);

    // The selected configuration's slot, or -1.
    int selectedSlot() const;
    void showHelp(int topic);
    // A message box over the window, titled with the program's title.
    void tell(const QString &text);
    // Equipment Settings of the selected configuration; true when OK closed it.
    bool configureSelected();
    void removeSelected();
    ConfigurationCommands::Context commandContext();
    void showMonitor(int slotIndex);
    void showOverview();

    MainWindowServices m_services;
    qlxLanguage m_language;
    ShellFiles m_files;
    std::unique_ptr<ConfigurationSet> m_configurations;
    MainMenus m_menus;
    QTabBar *m_tabStrip = nullptr;
    QStackedWidget *m_monitors = nullptr;
    QWidget *m_emptyPage = nullptr;
    QToolButton *m_btnOverview = nullptr;
    OverviewPage *m_overview = nullptr;
    std::vector<QPointer<QWidget>> m_views;
    QSystemTrayIcon *m_tray = nullptr;
    QTimer *m_autoAdd = nullptr;
    // Set while the tab strip is changed to follow the configuration set, whose
    // selection rules then stand.
    bool m_mirroring = false;
    bool m_loadedCleanly = false;
    bool m_unloaded = false;
    bool m_trayNoticeGiven = false;
    WelderStatus *m_status = nullptr;
};

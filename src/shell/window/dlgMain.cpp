#include "dlgMain.h"

#include "shell/DroppedContent.h"

#include "ConfigurationCommands.h"
#include "WelderStatus.h"

#include "overview/widgets/OverviewPage.h"
#include "platform/ErrorPassing.h"
#include "platform/ErrorReport.h"
#include "platform/ProgramError.h"
#include "platform/ProgramFiles.h"
#include "shell/EquipmentMonitorSlot.h"
#include "shell/XmlText.h"

#include <QCloseEvent>
#include <QLabel>
#include <QMenu>
#include <QScopedValueRollback>
#include <QStackedWidget>
#include <QSystemTrayIcon>
#include <QTabBar>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

dlgMain::dlgMain(MainWindowServices services, QWidget *parent)
    : QMainWindow(parent)
    , m_services(std::move(services))
{
    setObjectName(QStringLiteral("dlgMain"));
    buildControls();
    connectCommands();
}

dlgMain::~dlgMain()
{
    // The faces look at their monitors: they go before the configuration set that owns
    // the monitors.
    delete m_overview;
    for (const QPointer<QWidget> &view : m_views)
        delete view.data();
    m_views.clear();
    m_configurations.reset();
}

void dlgMain::buildControls()
{
    auto *central = new QWidget(this);
    auto *layout = new QVBoxLayout(central);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->setSpacing(0);

    // The overview of the whole hall stands left of the welders' tabs.
    auto *strip = new QHBoxLayout;
    m_btnOverview = new QToolButton(central);
    m_btnOverview->setObjectName(QStringLiteral("btnOverview"));
    m_btnOverview->setCheckable(true);
    m_btnOverview->setAutoRaise(true);
    strip->addWidget(m_btnOverview);
    m_tabStrip = new QTabBar(central);
    m_tabStrip->setObjectName(QStringLiteral("TabStrip1"));
    m_tabStrip->setExpanding(false);
    m_tabStrip->setDocumentMode(true);
    m_tabStrip->setSelectionBehaviorOnRemove(QTabBar::SelectRightTab);
    strip->addWidget(m_tabStrip, 1);
    layout->addLayout(strip);

    m_monitors = new QStackedWidget(central);
    m_monitors->setObjectName(QStringLiteral("CorvaneUsw1"));
    m_emptyPage = new QLabel(central);
    m_emptyPage->setObjectName(QStringLiteral("lblNoConfiguration"));
    static_cast<QLabel *>(m_emptyPage)->setAlignment(Qt::AlignCenter);
    m_emptyPage->setEnabled(false);
    m_monitors->addWidget(m_emptyPage);
    m_overview = new OverviewPage(m_services.clock, m_language, central);
    m_monitors->addWidget(m_overview);
    layout->addWidget(m_monitors, 1);
    setCentralWidget(central);

    m_menus.build(this);
    m_tray = new QSystemTrayIcon(this);
    m_tray->setObjectName(QStringLiteral("moTray"));
    m_tray->setContextMenu(m_menus.mnuPopup);
}

void dlgMain::connectCommands()
{
    const auto on = [this](QAction *action, void (dlgMain::*command)()) {
        connect(action, &QAction::triggered, this, command);
    };
    on(m_menus.mnuCloseWindow, &dlgMain::mnuCloseWindow_Click);
    on(m_menus.mnuShutDown, &dlgMain::mnuShutDown_Click);
    on(m_menus.mnuShutDown2, &dlgMain::mnuShutDown_Click);
    on(m_menus.mnuAdd, &dlgMain::mnuAdd_Click);
    on(m_menus.mnuRemove, &dlgMain::mnuRemove_Click);
    on(m_menus.mnuSettings, &dlgMain::mnuSettings_Click);
    on(m_menus.mnuDataLogging, &dlgMain::mnuDataLogging_Click);
    on(m_menus.mnuSPCSampling, &dlgMain::mnuSPCSampling_Click);
    on(m_menus.mnuControlChart, &dlgMain::mnuControlChart_Click);
    // A build without the chart window has no item for it.
    m_menus.mnuControlChart->setVisible(bool(m_services.chooseControlChart));
    on(m_menus.mnuStartStop, &dlgMain::mnuStartStop_Click);
    on(m_menus.mnuContents, &dlgMain::mnuContents_Click);
    on(m_menus.mnuGettingStarted, &dlgMain::mnuGettingStarted_Click);
    on(m_menus.mnuAboutApp, &dlgMain::mnuAboutApp_Click);
    on(m_menus.mnuAboutDB, &dlgMain::mnuAboutDB_Click);
    on(m_menus.mnuOpenWindow, &dlgMain::mnuOpenWindow_Click);
    on(m_menus.mnuViewErrorLog, &dlgMain::mnuViewErrorLog_Click);
    connect(m_menus.mnuConfiguration, &QMenu::aboutToShow, this, &dlgMain::mnuConfiguration_Click);
    connect(m_tabStrip, &QTabBar::currentChanged, this, [this](int index) {
        if (m_mirroring || !m_configurations)
            return;
        reportFailures(m_services.errors, "dlgMain.TabStrip1_Click",
                       [&] { m_configurations->setCurrentTab(index); });
    });
    // A click on the tab already selected brings its monitor back from the overview.
    connect(m_tabStrip, &QTabBar::tabBarClicked, this, [this] { TabStrip1_Click(); });
    connect(m_btnOverview, &QToolButton::clicked, this, &dlgMain::showOverview);
    connect(m_overview, &OverviewPage::welderChosen, this, [this](const QString &key) {
        ActivateConfiguration(key);
        TabStrip1_Click();
    });
    connect(m_tray, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
                    moTray_Click();
            });
}

// ---- Load ----------------------------------------------------------------------------

void dlgMain::Form_Load()
{
    // Each step reports on its own, so that a configurations file that cannot be read
    // still leaves a window with its tray icon to work with.
    reportFailures(m_services.errors, "dlgMain.Form_Load", [&] { loadLanguage(); });
    translateCaptions();
    reportFailures(m_services.errors, "dlgMain.Form_Load", [&] {
        m_files = ShellFiles::resolve(ProgramFiles(m_services.dataFolder), m_services.settings,
                                      m_services.regionalUnits);
        createConfigurations();
    });
    reportFailures(m_services.errors, "dlgMain.Form_Load",
                   [&] { ensureDataFolder(m_files.dataFolder); });
    m_loadedCleanly = reportFailures(m_services.errors, "dlgMain.Form_Load",
                                     [&] { m_configurations->LoadConfigurationFile(); });
    reportFailures(m_services.errors, "dlgMain.Form_Load", [&] { createTray(); });
    reportFailures(m_services.errors, "dlgMain.Form_Load", [&] {
        if (ConfigurationCount() > 0) {
            m_configurations->setCurrentTab(0);
            // A hall whose tabs no longer fit opens on its overview.
            if (ConfigurationCount() >= kOverviewFirstFrom)
                showOverview();
        } else if (m_loadedCleanly) {
            // A first start: Equipment Settings of a new configuration a second after
            // the window appears. A file that could not be read is no first start.
            m_autoAdd = new QTimer(this);
            m_autoAdd->setObjectName(QStringLiteral("moAutoAdd"));
            m_autoAdd->setSingleShot(true);
            m_autoAdd->setInterval(kAutoAddDelayMs);
            connect(m_autoAdd, &QTimer::timeout, this, &dlgMain::moAutoAdd_Timer);
            m_autoAdd->start();
        }
        mnuConfiguration_Click();
    });
}

void dlgMain::loadLanguage()
{
    if (m_services.languageTable.isEmpty())
        return;
    QString problem;
    if (!m_language.loadTable(m_services.languageTable, &problem)) {
        throw ProgramError(ProgramError::kPathFileAccessError,
                           QStringLiteral("The translation table cannot be read: %1").arg(problem),
                           QStringLiteral("dlgMain.loadLanguage"));
    }
}

void dlgMain::translateCaptions()
{
    setWindowTitle(m_services.applicationTitle);
    m_menus.translateCaptions(m_language);
    m_btnOverview->setText(m_language.Translate(u"7550|Overview"));
    static_cast<QLabel *>(m_emptyPage)
        ->setText(m_language.Translate(u"7050|No welder is configured: add one with "
                                       u"Configuration, Add."));
}

void dlgMain::createConfigurations()
{
    m_configurations = std::make_unique<ConfigurationSet>(
        m_files.configurationsPath, m_services.clock, m_language,
        [this](int slotIndex) { return makeSlot(slotIndex).monitor; });
    ConfigurationSet *set = m_configurations.get();
    connect(set, &ConfigurationSet::tabAdded, this, &dlgMain::tabAdded);
    connect(set, &ConfigurationSet::tabRemoved, this, &dlgMain::tabRemoved);
    connect(set, &ConfigurationSet::tabCaptionChanged, this, &dlgMain::tabCaptionChanged);
    connect(set, &ConfigurationSet::currentTabChanged, this, &dlgMain::currentTabChanged);
    connect(set, &ConfigurationSet::unreadContentKept, this,
            [this](const QString &copyPath, const QStringList &dropped) {
                if (!m_services.eventLog)
                    return;
                reportFailures(m_services.errors, "dlgMain.Form_QueryUnload",
                               [&] { logUnreadKept(*m_services.eventLog, copyPath, dropped); });
            });
}

MonitorSlot dlgMain::makeSlot(int slotIndex)
{
    MonitorSlot slot = m_services.makeSlot(slotIndex, m_files, m_language);
    if (int(m_views.size()) <= slotIndex)
        m_views.resize(size_t(slotIndex) + 1);
    if (slot.view) {
        m_monitors->addWidget(slot.view);
        m_views[size_t(slotIndex)] = slot.view;
    }
    if (const auto *equipment = dynamic_cast<const EquipmentMonitorSlot *>(slot.monitor.get()))
        m_overview->addWelder(equipment->monitor());
    return slot;
}

void dlgMain::createTray()
{
    m_tray->setIcon(WelderStatus::trayImage());
    m_tray->setToolTip(m_services.applicationTitle);
    setWindowIcon(m_tray->icon());
    m_tray->show();
    if (m_configurations) {
        m_status = new WelderStatus(*m_configurations, *m_tabStrip, *m_tray, m_language,
                                    m_services.applicationTitle, this);
    }
}

// ---- Tabs ----------------------------------------------------------------------------

const ConfigurationTab *dlgMain::GetTab(const QString &key) const
{
    return m_configurations ? m_configurations->GetTab(key) : nullptr;
}

void dlgMain::ActivateConfiguration(const QString &key)
{
    if (m_configurations)
        m_configurations->ActivateConfiguration(key);
}

int dlgMain::ConfigurationCount() const
{
    return m_configurations ? m_configurations->ConfigurationCount() : 0;
}

void dlgMain::tabAdded(int index)
{
    const ConfigurationTab &tab = m_configurations->tabs().at(index);
    const QScopedValueRollback mirroring(m_mirroring, true);
    m_tabStrip->insertTab(index, tab.caption);
    m_tabStrip->setTabData(index, tab.key);
    m_tabStrip->setCurrentIndex(m_configurations->currentTab());
    if (m_status)
        m_status->refresh();
}

void dlgMain::tabRemoved(int index)
{
    const QScopedValueRollback mirroring(m_mirroring, true);
    m_tabStrip->removeTab(index);
}

void dlgMain::tabCaptionChanged(int index)
{
    m_tabStrip->setTabText(index, m_configurations->tabs().at(index).caption);
}

void dlgMain::currentTabChanged(int index)
{
    {
        const QScopedValueRollback mirroring(m_mirroring, true);
        m_tabStrip->setCurrentIndex(index);
    }
    TabStrip1_Click();
}

void dlgMain::TabStrip1_Click()
{
    reportFailures(m_services.errors, "dlgMain.TabStrip1_Click", [&] {
        const ConfigurationTab *selected = GetTab(QString());
        if (!selected) {
            m_monitors->setCurrentWidget(m_emptyPage);
            return;
        }
        for (int slot = 0; slot < m_configurations->slotCount(); ++slot) {
            if (m_configurations->monitor(slot).identifier() == selected->key)
                showMonitor(slot);
        }
    });
}

void dlgMain::showMonitor(int slotIndex)
{
    QWidget *view = monitorView(slotIndex);
    m_monitors->setCurrentWidget(view ? view : m_emptyPage);
    m_btnOverview->setChecked(false);
}

void dlgMain::showOverview()
{
    m_monitors->setCurrentWidget(m_overview);
    m_btnOverview->setChecked(true);
}

QWidget *dlgMain::monitorView(int slotIndex) const
{
    if (slotIndex < 0 || slotIndex >= int(m_views.size()))
        return nullptr;
    return m_views[size_t(slotIndex)].data();
}

int dlgMain::selectedSlot() const
{
    return m_configurations ? m_configurations->GetConfigurationIndex(QString()) : -1;
}

// ---- Unload --------------------------------------------------------------------------

void dlgMain::closeEvent(QCloseEvent *event)
{
    if (Form_QueryUnload(FormControlMenu))
        event->ignore();
    else
        event->accept();
}

bool dlgMain::Form_QueryUnload(UnloadMode mode)
{
    if (mode == FormControlMenu && !m_unloaded) {
        hide();
        // Once per run: a closed window must not look like a program that has ended.
        if (!m_trayNoticeGiven) {
            m_trayNoticeGiven = true;
            m_tray->showMessage(m_services.applicationTitle,
                                m_language.Translate(u"7052|The program keeps running in the "
                                                     u"notification area; Shut Down in its "
                                                     u"menu ends it."));
        }
        return true;
    }
    if (m_unloaded)
        return false;
    m_unloaded = true;
    if (m_autoAdd)
        m_autoAdd->stop();
    if (m_configurations) {
        // A failure to save is reported and the program still ends: the monitors are
        // shut down all the same.
        reportFailures(m_services.errors, "dlgMain.Form_QueryUnload", [&] {
            m_configurations->WriteConfigurationFile(xmlText(m_configurations->GetXMLNode()));
        });
        for (int slot = 0; slot < m_configurations->slotCount(); ++slot) {
            reportFailures(m_services.errors, "dlgMain.Form_QueryUnload",
                           [&] { m_configurations->monitor(slot).ShutDown(); });
        }
    }
    m_tray->hide();
    hide();
    emit unloaded();
    return false;
}

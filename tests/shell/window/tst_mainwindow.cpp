#include "SampleWelds.h"
#include "WindowFixture.h"

#include "monitor/EquipmentMonitor.h"
#include "monitor/widgets/CorvaneUsw.h"
#include "shell/ShellSettings.h"
#include "shell/window/DesktopServices.h"
#include "shell/window/DialogConfigurationCommands.h"
#include "shell/window/StartupOptions.h"

#include "shell/window/InstalledFiles.h"
#include "shell/window/ProgramVersion.h"
#include "shell/window/WelderStatus.h"
#include "shell/window/dlgSplash.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QSystemTrayIcon>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>
#include <QTranslator>

// The main window over fake monitors (tabs from the configurations file, the enabling of
// the menus, hiding versus shutting down, the automatic Add of a first start, the tray,
// help and the About box), and over the program's real monitors and links.
class TestMainWindow : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<WindowFixture> m_fixture;

    WindowFixture &f() { return *m_fixture; }

    void writeThreeWelders()
    {
        f().writeConfigurations(
            {welder("Press 1"), welder("Press 2", " Sampling=\"1\""), welder("Press 3")});
    }

    // Opens the Configuration menu as the user does, which computes its enabling.
    static void openConfigurationMenu(dlgMain &window)
    {
        window.menus().mnuConfiguration->popup(QPoint(0, 0));
        window.menus().mnuConfiguration->hide();
    }

    QWidget *shownMonitor()
    {
        return f()
            .window->findChild<QStackedWidget *>(QStringLiteral("CorvaneUsw1"))
            ->currentWidget();
    }

    // The object names of a menu and its submenus in order, a separator as "-".
    static QString menuTree(const QList<QAction *> &actions)
    {
        QStringList tree;
        for (QAction *item : actions)
            tree << (item->isSeparator() ? QStringLiteral("-") : item->objectName())
                 << (item->menu() ? menuTree(item->menu()->actions()) : QString());
        return tree.join(u' ').simplified();
    }

    // The captions whose access key an earlier item of the same menu level has.
    static QStringList clashingAccessKeys(const QList<QAction *> &actions)
    {
        QStringList keys, clashes;
        for (QAction *item : actions) {
            const QString text = item->menu() ? item->menu()->title() : item->text();
            const QString key = text.section(u'&', 1).left(1).toLower();
            if (!key.isEmpty() && keys.contains(key))
                clashes << text;
            keys << key;
            if (item->menu())
                clashes << clashingAccessKeys(item->menu()->actions());
        }
        return clashes;
    }

private slots:
    void init() { m_fixture = std::make_unique<WindowFixture>(); }
    void cleanup() { m_fixture.reset(); }

    void tabsFollowTheFileOrder()
    {
        f().writeConfigurations(
            {welder("Press 1"), "<Notes/>", welder("Broken", " Refuse=\"1\""), welder("Press 3")});
        dlgMain &window = f().open();

        // The refused configuration has no tab; the next one takes its free slot.
        QCOMPARE(f().tabCaptions(), (QStringList{"Press 1", "Press 3"}));
        QCOMPARE(window.ConfigurationCount(), 2);
        QCOMPARE(window.tabStrip()->tabData(1).toString(), QStringLiteral("key-1"));
        QCOMPARE(window.GetTab(QString())->caption, QStringLiteral("Press 1"));
        QCOMPARE(shownMonitor(), f().views[0]);
        QVERIFY(!f().views[1]->isVisible());
        QVERIFY(window.autoAddTimer() == nullptr);

        // Selecting by key, and clicking a tab, shows that configuration's monitor only.
        window.ActivateConfiguration(QStringLiteral("key-1"));
        QCOMPARE(window.tabStrip()->currentIndex(), 1);
        QCOMPARE(shownMonitor(), f().views[1]);
        window.tabStrip()->setCurrentIndex(0);
        QCOMPARE(window.configurations()->currentTab(), 0);
        QCOMPARE(shownMonitor(), f().views[0]);

        // Add makes a new slot, selects its tab and names it from Equipment Settings.
        f().commands.names = QStringList{"Press 4"};
        window.mnuAdd_Click();
        QCOMPARE(f().tabCaptions(), (QStringList{"Press 1", "Press 3", "Press 4"}));
        QCOMPARE(shownMonitor(), f().views[2]);
        QCOMPARE(f().commands.calls.size(), 1);
        QCOMPARE(std::get<1>(f().commands.calls.value(0)), f().monitors[2]);
        QVERIFY(f().errors.isEmpty());
    }

    void removingTheOnlyConfigurationLeavesNoSelection()
    {
        f().writeConfigurations({welder("Solo")});
        dlgMain &window = f().open();
        window.mnuRemove_Click();
        QCOMPARE(window.tabStrip()->count(), 0);
        QVERIFY(window.GetTab(QString()) == nullptr);
        QCOMPARE(shownMonitor()->objectName(), QStringLiteral("lblNoConfiguration"));
        // The file keeps it until the next Shut Down.
        QVERIFY(f().read().contains("Solo"));
        window.mnuSettings_Click();
        QVERIFY(f().commands.calls.isEmpty());
    }

    void configurationMenuFollowsTheSelectedMonitor()
    {
        writeThreeWelders();
        dlgMain &window = f().open();
        const MainMenus &menus = window.menus();
        // Remove, Settings, Data Logging, SPC Sampling, About and About the database as
        // 1 for enabled and 0 for not.
        const auto enabled = [&] {
            QString states;
            for (QAction *item : {menus.mnuRemove, menus.mnuSettings, menus.mnuDataLogging,
                                  menus.mnuSPCSampling, menus.mnuAboutApp, menus.mnuAboutDB})
                states += item->isEnabled() ? u'1' : u'0';
            return states;
        };

        openConfigurationMenu(window);
        QCOMPARE(enabled(), QStringLiteral("111110"));
        QCOMPARE(menus.mnuStartStop->text(), QStringLiteral("&Start"));

        // A configuration that collects keeps its settings until it is stopped; the
        // enabling follows when the menu opens again.
        menus.mnuStartStop->trigger();
        QCOMPARE(f().monitors[0]->DriverState(), 2);
        openConfigurationMenu(window);
        QCOMPARE(enabled(), QStringLiteral("000000"));
        QCOMPARE(menus.mnuStartStop->text(), QStringLiteral("&Stop"));

        // The second welder is idle and samples into the SPC database.
        window.tabStrip()->setCurrentIndex(1);
        openConfigurationMenu(window);
        QCOMPARE(enabled(), QStringLiteral("111111"));

        // The commands reach the selected monitor, with the window as the dialogs' parent;
        // a cancelled Equipment Settings leaves the caption.
        menus.mnuSettings->trigger();
        menus.mnuDataLogging->trigger();
        menus.mnuSPCSampling->trigger();
        using Call = ScriptedCommands::Call;
        QCOMPARE(f().commands.calls, (QList<Call>{{"equipment", f().monitors[1], &window},
                                                  {"data logging", f().monitors[1], &window},
                                                  {"sampling", f().monitors[1], &window}}));
        QCOMPARE(f().tabCaptions()[1], QStringLiteral("Press 2"));

        window.configurations()->setCurrentTab(-1);
        openConfigurationMenu(window);
        QCOMPARE(enabled(), QStringLiteral("000000"));
        QVERIFY(!menus.mnuStartStop->isEnabled());
        QVERIFY(f().errors.isEmpty());
    }

    void closeBoxHidesAndOnlyShutDownSaves()
    {
        // Hand-written with line breaks: the saved compact form differs, so the save at
        // Shut Down writes the file and leaves its dated copy.
        const QByteArray handWritten =
            "<Configurations>\n  " + welder("Press 1").toUtf8() + "\n</Configurations>\n";
        f().write(QStringLiteral("corvane-monitor.cfg"), handWritten);
        dlgMain &window = f().open();
        QSignalSpy unloaded(&window, &dlgMain::unloaded);
        const auto datedCopies = [this] {
            return QDir(f().folder.path()).entryList({QStringLiteral("corvane-monitor.cfg_*")});
        };

        QVERIFY(!window.close());
        QVERIFY(!window.isVisible());
        emit window.trayIcon()->activated(QSystemTrayIcon::Trigger);
        QVERIFY(window.isVisible());
        window.menus().mnuCloseWindow->trigger();
        QVERIFY(!window.isVisible());
        QCOMPARE(unloaded.count(), 0);
        QCOMPARE(f().read(), handWritten);
        QVERIFY(datedCopies().isEmpty());
        QCOMPARE(f().monitors[0]->shutDowns, 0);

        window.menus().mnuShutDown2->trigger();
        QCOMPARE(unloaded.count(), 1);
        QCOMPARE(f().read(), "<Configurations>" + welder("Press 1").toUtf8() + "</Configurations>");
        QCOMPARE(datedCopies(), QStringList{"corvane-monitor.cfg_261114220509"});
        QCOMPARE(f().monitors[0]->shutDowns, 1);

        // The end of the session after Shut Down does nothing more.
        QVERIFY(!window.Form_QueryUnload(dlgMain::AppWindows));
        QCOMPARE(unloaded.count(), 1);
        QCOMPARE(f().monitors[0]->shutDowns, 1);
    }

    void saveFailureIsReportedAndTheProgramStillEnds()
    {
        // An administrator moved the file into a folder that does not exist.
        f().write(QStringLiteral("settings.ini"),
                  "[corvane-monitor]\nFile=" +
                      f().path(QStringLiteral("gone/welders.cfg")).toUtf8());
        dlgMain &window = f().open();
        QCOMPARE(f().errors.count(), 1);
        QCOMPARE(f().errors.last().location, QStringLiteral("dlgMain.Form_Load"));
        // A file that could not be read is no first start.
        QVERIFY(window.autoAddTimer() == nullptr);

        f().commands.names = QStringList{"Press 1"};
        window.mnuAdd_Click();
        QSignalSpy unloaded(&window, &dlgMain::unloaded);
        window.mnuShutDown_Click();
        QCOMPARE(f().errors.count(), 2);
        QCOMPARE(f().errors.last().location, QStringLiteral("dlgMain.Form_QueryUnload"));
        QCOMPARE(unloaded.count(), 1);
        QCOMPARE(f().monitors[0]->shutDowns, 1);
    }

    void firstStartAddsAfterOneSecond()
    {
        f().commands.names = QStringList{"Press 1"};
        dlgMain &window = f().open();
        QTimer *autoAdd = window.autoAddTimer();
        QVERIFY(autoAdd && autoAdd->isActive() && autoAdd->isSingleShot());
        QCOMPARE(autoAdd->interval(), 1000);
        QCOMPARE(window.ConfigurationCount(), 0);

        QTRY_COMPARE_WITH_TIMEOUT(window.ConfigurationCount(), 1, 5000);
        QCOMPARE(f().commands.calls.size(), 1);
        QCOMPARE(f().tabCaptions(), QStringList{"Press 1"});
        QCOMPARE(shownMonitor(), f().views[0]);
        window.mnuShutDown_Click();
        QVERIFY(f().read().contains("Press 1"));
    }

    void startWithConfigurationsOrRefusalAddsNothing()
    {
        writeThreeWelders();
        dlgMain &window = f().open();
        QVERIFY(window.autoAddTimer() == nullptr);
        QCOMPARE(window.ConfigurationCount(), 3);
        QVERIFY(f().commands.calls.isEmpty());

        // A configuration the monitor refuses gets no tab and no dialog.
        for (FakeMonitor *monitor : f().monitors)
            monitor->refuseAll = true;
        window.mnuRemove_Click();
        window.mnuAdd_Click();
        QCOMPARE(window.ConfigurationCount(), 2);
        QVERIFY(f().commands.calls.isEmpty());
    }

    // Closing the window says once that the program keeps running in the tray; About Data
    // Source tells which SPC database the selected welder samples into and whether it is
    // reached.
    void trayAndRestore()
    {
        f().writeConfigurations({welder("Press 2", " Sampling=\"1\"")});
        dlgMain &window = f().open();
        QSystemTrayIcon *tray = window.trayIcon();
        QVERIFY(tray->isVisible());
        QVERIFY(!tray->icon().pixmap(16, 16).isNull());
        QCOMPARE(tray->toolTip(), QLatin1String(WindowFixture::kTitle));
        QCOMPARE(window.windowTitle(), QLatin1String(WindowFixture::kTitle));
        QCOMPARE(tray->contextMenu(), window.menus().mnuPopup);

        window.showMinimized();
        window.restoreWindow();
        QVERIFY(window.isVisible() && !window.isMinimized());
        window.close();
        QVERIFY(window.trayNoticeGiven() && !window.isVisible());
        window.menus().mnuOpenWindow->trigger();
        QVERIFY(window.isVisible());

        f().monitors[0]->shownSource = {QStringLiteral("postgresql://spc@qs/plant"), true};
        window.mnuAboutDB_Click();
        QCOMPARE(f().messages.last().text,
                 QStringLiteral("Data source name: postgresql://spc@qs/plant\nKind: The plant's "
                                "database server (PostgreSQL)\nState: Connected"));
    }

    void menusInBothLanguages_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<QStringList>("captions");
        QTest::newRow("built-in") << QString()
                                  << QStringList{"&File", "&Configuration", "&Help",
                                                 "Shut &Down..."};
        QTest::newRow("German") << QStringLiteral(CORVANE_SOURCE_DIR
                                                  "/translations/corvane-monitor.de.lang")
                                << QStringList{"&Datei", "&Konfiguration", "&Hilfe", "&Beenden..."};
    }

    void menusInBothLanguages()
    {
        QFETCH(QString, table);
        QFETCH(QStringList, captions);
        f().languageTable = table;
        dlgMain &window = f().open();
        const MainMenus &menus = window.menus();
        QCOMPARE((QStringList{menus.mnuFile->title(), menus.mnuConfiguration->title(),
                              menus.mnuHelp->title(), menus.mnuShutDown->text()}),
                 captions);
        QCOMPARE(menuTree(window.menuBar()->actions()),
                 QStringLiteral("mnuCloseWindow - mnuShutDown mnuAdd mnuRemove - mnuSettings - "
                                "mnuDataLogging - mnuSPCSampling mnuControlChart - mnuStartStop "
                                "mnuContents "
                                "mnuGettingStarted - mnuAboutApp mnuAboutDB"));
        QCOMPARE(menuTree(menus.mnuPopup->actions()),
                 QStringLiteral("mnuOpenWindow - mnuViewErrorLog - mnuShutDown2"));
        QCOMPARE(menus.mnuStartStop->shortcut(), QKeySequence(Qt::Key_F5));
        // Every menu's access keys are its own, Start as well as Stop.
        for (QStringView startStop : {u"3786|&Start", u"929|&Stop"}) {
            menus.mnuStartStop->setText(window.language().Translate(startStop));
            QCOMPARE(clashingAccessKeys(window.menuBar()->actions()), QStringList());
        }
        QCOMPARE(clashingAccessKeys(menus.mnuPopup->actions()), QStringList());
        // Qt's own buttons and file chooser speak the language too.
        QTranslator qtTexts;
        QCOMPARE(InstalledFiles::loadQtTexts(qtTexts, table.isEmpty() ? QString() : "de"),
                 !table.isEmpty());
        QCOMPARE(qtTexts.translate("QPlatformTheme", "Cancel"),
                 table.isEmpty() ? QString() : QStringLiteral("Abbrechen"));
        QVERIFY(f().errors.isEmpty());
    }

    void helpLogAndAbout()
    {
        f().write(QStringLiteral("settings.ini"), "[Corvane]\nBuild_Number=2026.11-7\n");
        f().languageTable =
            QStringLiteral(CORVANE_SOURCE_DIR "/translations/corvane-monitor.de.lang");
        f().writeConfigurations({welder("Press 1")});
        dlgMain &window = f().open();

        window.menus().mnuContents->trigger();
        window.menus().mnuGettingStarted->trigger();
        QCOMPARE(f().helpPages.size(), 2);
        QCOMPARE(f().helpPages[0].fileName(), QStringLiteral("contents.html"));
        QCOMPARE(f().helpPages[1].fileName(), QStringLiteral("getting-started.html"));
        f().write(QStringLiteral("corvane-monitor.log"), "23.11.2026 14:00 Press 1: refused\n");
        window.menus().mnuViewErrorLog->trigger();
        QCOMPARE(f().viewerCommands.size(), 1);
        const DatabaseSupport::ViewerCommand &viewer = f().viewerCommands[0];
        QVERIFY((viewer.arguments.join(u' ') + viewer.nativeArguments)
                    .contains(f().path(QStringLiteral("corvane-monitor.log"))));

        // The About box is modal: it is read and closed with its own button.
        QStringList seen;
        QTimer::singleShot(0, this, [&seen] {
            QWidget *about = QApplication::activeModalWidget();
            for (const char *name : {"lblVersion", "lblProductName", "lblCopyright"})
                seen.append(about->findChild<QLabel *>(QLatin1String(name))->text());
            seen.append(about->windowTitle());
            about->findChild<QPushButton *>(QStringLiteral("bnClose"))->click();
        });
        window.menus().mnuAboutApp->trigger();
        QCOMPARE(seen, (QStringList{"2026.11-7",
                                    QStringLiteral("Corvane Ostrel ") +
                                        QLatin1String(ProgramVersion::kVersion),
                                    QString::fromUtf8(ProgramVersion::kCopyright),
                                    QStringLiteral("Über das Programm")}));
        QVERIFY(f().errors.isEmpty());

        // Help without its map: the command reports under its own name.
        HelpModule missing(f().path(QStringLiteral("absent.Help.Map")));
        std::swap(f().help, missing);
        window.mnuGettingStarted_Click();
        QCOMPARE(f().errors.count(), 1);
        QCOMPARE(f().errors.last().location, QStringLiteral("dlgMain.mnuGettingStarted_Click"));
        QVERIFY(f().errors.last().source.startsWith(QLatin1String("HelpModule.")));
    }

    // Cancel in the Equipment Settings that Add opened takes the new welder back, so no
    // nameless one is saved and the next start offers Add again.
    void cancelledAddLeavesNoWelder()
    {
        dlgMain &window = f().open();
        QTRY_COMPARE_WITH_TIMEOUT(f().commands.calls.size(), 1, 5000);
        QCOMPARE(window.ConfigurationCount(), 0);
        window.mnuShutDown_Click();
        QVERIFY(!f().read().contains("<Equipment"));
        QVERIFY(f().open().autoAddTimer() != nullptr);
    }

    // Without a browser or viewer, or without an event log yet, the user is told which
    // file it is and why it does not open.
    void helpAndLogThatCannotBeShownAreExplained()
    {
        f().desktopOpens = false;
        dlgMain &window = f().open();
        window.menus().mnuViewErrorLog->trigger();
        f().write(QStringLiteral("corvane-monitor.log"), "23.11.2026 14:00 Press 1: refused\n");
        window.menus().mnuViewErrorLog->trigger();
        window.menus().mnuGettingStarted->trigger();
        QStringList texts;
        for (const auto &message : f().messages.messages)
            texts << message.text.section(u' ', 4, 7);
        QCOMPARE(texts, (QStringList{"is still empty: nothing", "cannot be opened: this",
                                     "cannot be opened: this"}));
        QVERIFY(f().messages.messages[0].text.contains(f().path("corvane-monitor.log")));
        QVERIFY(f().messages.messages[2].text.contains(QStringLiteral("getting-started.html")));
    }

    // A welder whose link is down or whose last weld is out of specification shows it on
    // its tab, however hidden; the tray counts the welders that are not connected.
    void welderConditionsShowOnTabsAndTray()
    {
        writeThreeWelders();
        dlgMain &window = f().open();
        f().monitors[1]->shownCondition = WelderCondition::LinkDown;
        f().monitors[2]->shownCondition = WelderCondition::OutOfSpecification;
        window.welderStatus()->refresh();
        QTabBar *tabs = window.tabStrip();
        QVERIFY(tabs->tabIcon(0).isNull() && !tabs->tabIcon(1).isNull());
        QVERIFY(tabs->tabIcon(1).cacheKey() != tabs->tabIcon(2).cacheKey());
        QCOMPARE(tabs->tabToolTip(1), QStringLiteral("The link to the power supply is not up"));
        // The window looks again by itself.
        f().monitors[0]->shownCondition = WelderCondition::LinkDown;
        const QString title = QLatin1String(WindowFixture::kTitle);
        QTRY_COMPARE_WITH_TIMEOUT(window.trayIcon()->toolTip(),
                                  title + QStringLiteral("\n2 welders not connected"), 3000);
    }

    void aboutBoxWithoutBuildNumber()
    {
        dlgSplash about(f().settings);
        about.Form_Load();
        QCOMPARE(about.lblVersion->text(), QStringLiteral("----"));
        QCOMPARE(about.lblPoweredBy->text(), QStringLiteral("Powered by Meridal"));
    }

    // The desktop program's own composition (real monitors with their faces, real links,
    // the error report, the event log) behind the main window, against two power supplies
    // played by loopback TCP servers.
    void welderCollectsBehindTheWindow()
    {
        QTcpServer supply1;
        QTcpServer supply2;
        QVERIFY(supply1.listen(QHostAddress::LocalHost));
        QVERIFY(supply2.listen(QHostAddress::LocalHost));
        qputenv(ShellSettings::kSettingsFileEnvironment, f().path("settings.ini").toUtf8());
        const auto unset = qScopeGuard([] { qunsetenv(ShellSettings::kSettingsFileEnvironment); });
        f().write(QStringLiteral("corvane-monitor.ini"), "[PREFERENCES]\nMEASUREMENT_SYSTEM=0\n");
        f().writeConfigurations(
            {QStringLiteral("<Configuration><Equipment Name=\"Press 1\" "
                            "Settings=\"IP:127.0.0.1:%1\"/><List Index=\"0\" ItemData=\"2\"/>"
                            "</Configuration>")
                 .arg(supply1.serverPort()),
             QStringLiteral("<Configuration><Equipment Name=\"Press 2\" "
                            "Settings=\"IP:127.0.0.1:%1\"/></Configuration>")
                 .arg(supply2.serverPort())});

        StartupOptions options;
        options.program.dataFolder = f().folder.path();
        options.language = QStringLiteral("en");
        DesktopServices services(options, QStringLiteral("Corvane Ostrel"),
                                 QCoreApplication::applicationDirPath());
        dlgMain window(services.windowServices());
        window.Form_Load();
        window.show();
        const MainMenus &menus = window.menus();
        const auto monitorOf = [&window](int slot) -> EquipmentMonitor & {
            return DialogConfigurationCommands::equipmentMonitor(
                window.configurations()->monitor(slot));
        };
        QCOMPARE(window.ConfigurationCount(), 2);
        auto *faces = window.findChild<QStackedWidget *>(QStringLiteral("CorvaneUsw1"));
        auto *face = qobject_cast<CorvaneUsw *>(faces->currentWidget());
        QCOMPARE(&face->monitor(), &monitorOf(0));
        QCOMPARE(monitorOf(0).configurationName(), QStringLiteral("Press 1"));
        QCOMPARE(monitorOf(0).rowSelection(0), 2);

        // Menu, tabs and a welder's whole face fit a 1024 x 768 screen with a taskbar:
        // at the smallest size the window allows, every row's meter is inside it.
        const QSize smallest = window.minimumSizeHint().expandedTo(window.minimumSize());
        QVERIFY2(
            smallest.width() <= 1024 && smallest.height() <= 728,
            qPrintable(QStringLiteral("%1 x %2").arg(smallest.width()).arg(smallest.height())));
        window.resize(smallest);
        QTRY_COMPARE(window.size(), smallest);
        for (int row = 0; row < 8; ++row) {
            const auto *meter = face->findChild<QWidget *>(QStringLiteral("hmMeter_%1").arg(row));
            const QRect area(meter->mapTo(&window, QPoint(0, 0)), meter->size());
            QVERIFY2(window.rect().contains(area), qPrintable(QString::number(row)));
        }

        // F5 starts the selected welder; its power supply sees the connection and sends
        // one weld. While it collects its settings stay closed.
        menus.mnuStartStop->trigger();
        QTRY_VERIFY_WITH_TIMEOUT(supply1.hasPendingConnections(), 5000);
        QTcpSocket *link = supply1.nextPendingConnection();
        QTRY_COMPARE_WITH_TIMEOUT(monitorOf(0).DriverState(), 3, 5000);
        link->write(SampleWelds::stream(1));
        QTRY_COMPARE_WITH_TIMEOUT(monitorOf(0).totalWelds(), 1, 5000);
        openConfigurationMenu(window);
        QVERIFY(!menus.mnuRemove->isEnabled() && !menus.mnuSettings->isEnabled());
        QCOMPARE(menus.mnuStartStop->text(), QStringLiteral("&Stop"));

        // Hidden in the tray the monitor goes on collecting.
        QVERIFY(!window.close());
        link->write(SampleWelds::stream(2).mid(SampleWelds::stream(1).size()));
        QTRY_COMPARE_WITH_TIMEOUT(monitorOf(0).totalWelds(), 2, 5000);
        menus.mnuStartStop->trigger();
        QTRY_COMPARE_WITH_TIMEOUT(monitorOf(0).DriverState(), 1, 5000);
        openConfigurationMenu(window);
        QVERIFY(menus.mnuRemove->isEnabled() && menus.mnuSettings->isEnabled());

        // The Configure commands open the real dialogs over the stopped welder; each is
        // cancelled from the event loop and changes nothing.
        QStringList dialogs;
        for (QAction *command : {menus.mnuSettings, menus.mnuDataLogging, menus.mnuSPCSampling}) {
            QTimer::singleShot(0, this, [&dialogs] {
                auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
                dialogs.append(dialog ? dialog->objectName() : QStringLiteral("none"));
                if (dialog)
                    dialog->reject();
            });
            command->trigger();
        }
        QCOMPARE(dialogs, (QStringList{"dlgIPSetup", "dlgDataLogging", "dlgSampling"}));
        QCOMPARE(window.tabStrip()->tabText(0), QStringLiteral("Press 1"));

        // Shut Down writes both welders back, in their own compact form, and shuts the
        // monitors down.
        window.mnuShutDown_Click();
        QCOMPARE(monitorOf(0).DriverState(), 0);
        QCOMPARE(monitorOf(1).DriverState(), 0);
        const QByteArray saved = f().read();
        QVERIFY(saved.startsWith("<Configurations><Configuration><Equipment Name=\"Press 1\""));
        QVERIFY(saved.contains("Name=\"Press 2\""));
        QVERIFY2(!QFile::exists(f().path(QStringLiteral("corvane-monitor.errors.log"))),
                 "a failure was reported");
    }
};

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"

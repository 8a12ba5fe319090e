#include "SampleWelds.h"

#include "monitor/EquipmentMonitor.h"
#include "monitor/widgets/CorvaneUsw.h"
#include "shell/ShellSettings.h"
#include "shell/window/DesktopServices.h"
#include "shell/window/DialogConfigurationCommands.h"
#include "shell/window/StartupOptions.h"
#include "shell/window/dlgMain.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QStackedWidget>
#include <QTabBar>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

// The desktop program's own composition (real monitors with their faces, real links,
// the error report, the event log) behind the main window, against two power supplies
// played by loopback TCP servers.
class TestDesktopWindow : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;

    static void openConfigurationMenu(dlgMain &window)
    {
        QMenu *menu = window.menus().mnuConfiguration;
        menu->popup(QPoint(0, 0));
        menu->hide();
    }

    static EquipmentMonitor &monitorOf(dlgMain &window, int slot)
    {
        return DialogConfigurationCommands::equipmentMonitor(
            window.configurations()->monitor(slot));
    }

private slots:
    void initTestCase()
    {
        qputenv(ShellSettings::kSettingsFileEnvironment,
                m_folder.filePath(QStringLiteral("settings.ini")).toUtf8());
    }

    void welderCollectsBehindTheWindow()
    {
        QTcpServer supply1;
        QTcpServer supply2;
        QVERIFY(supply1.listen(QHostAddress::LocalHost));
        QVERIFY(supply2.listen(QHostAddress::LocalHost));
        const QString data = m_folder.filePath(QStringLiteral("data"));
        QVERIFY(QDir().mkpath(data));
        QFile preferences(QDir(data).filePath(QStringLiteral("corvane-monitor.ini")));
        QVERIFY(preferences.open(QIODevice::WriteOnly));
        preferences.write("[PREFERENCES]\nMEASUREMENT_SYSTEM=0\n");
        preferences.close();
        QFile configurations(QDir(data).filePath(QStringLiteral("corvane-monitor.cfg")));
        QVERIFY(configurations.open(QIODevice::WriteOnly));
        configurations.write(
            QStringLiteral("<Configurations>"
                           "<Configuration><Equipment Name=\"Press 1\" "
                           "Settings=\"IP:127.0.0.1:%1\"/><List Index=\"0\" ItemData=\"2\"/>"
                           "</Configuration>"
                           "<Configuration><Equipment Name=\"Press 2\" "
                           "Settings=\"IP:127.0.0.1:%2\"/></Configuration>"
                           "</Configurations>")
                .arg(supply1.serverPort())
                .arg(supply2.serverPort())
                .toUtf8());
        configurations.close();

        StartupOptions options;
        options.program.dataFolder = data;
        options.language = QStringLiteral("en");
        DesktopServices services(options, QStringLiteral("Corvane Ostrel"),
                                 QCoreApplication::applicationDirPath());
        dlgMain window(services.windowServices());
        window.Form_Load();
        window.show();

        QCOMPARE(window.ConfigurationCount(), 2);
        auto *faces = window.findChild<QStackedWidget *>(QStringLiteral("CorvaneUsw1"));
        auto *face = qobject_cast<CorvaneUsw *>(faces->currentWidget());
        QVERIFY(face);
        QCOMPARE(&face->monitor(), &monitorOf(window, 0));
        QCOMPARE(monitorOf(window, 0).configurationName(), QStringLiteral("Press 1"));
        QCOMPARE(monitorOf(window, 0).rowSelection(0), 2);

        // F5 starts the selected welder; its power supply sees the connection and sends
        // one weld.
        window.menus().mnuStartStop->trigger();
        QTRY_VERIFY_WITH_TIMEOUT(supply1.hasPendingConnections(), 5000);
        QTcpSocket *link = supply1.nextPendingConnection();
        QTRY_COMPARE_WITH_TIMEOUT(monitorOf(window, 0).DriverState(), 3, 5000);
        link->write(SampleWelds::stream(1));
        QTRY_COMPARE_WITH_TIMEOUT(monitorOf(window, 0).totalWelds(), 1, 5000);

        // While it collects its settings stay closed; the other welder's do not.
        openConfigurationMenu(window);
        QVERIFY(!window.menus().mnuRemove->isEnabled());
        QVERIFY(!window.menus().mnuSettings->isEnabled());
        QVERIFY(!window.menus().mnuAboutApp->isEnabled());
        QCOMPARE(window.menus().mnuStartStop->text(), QStringLiteral("&Stop"));
        window.tabStrip()->setCurrentIndex(1);
        QCOMPARE(&qobject_cast<CorvaneUsw *>(faces->currentWidget())->monitor(),
                 &monitorOf(window, 1));
        openConfigurationMenu(window);
        QVERIFY(window.menus().mnuRemove->isEnabled());
        QCOMPARE(window.menus().mnuStartStop->text(), QStringLiteral("&Start"));

        // Hidden in the tray the monitor goes on collecting.
        QVERIFY(!window.close());
        link->write(SampleWelds::stream(2).mid(SampleWelds::stream(1).size()));
        QTRY_COMPARE_WITH_TIMEOUT(monitorOf(window, 0).totalWelds(), 2, 5000);

        window.tabStrip()->setCurrentIndex(0);
        window.menus().mnuStartStop->trigger();
        QTRY_COMPARE_WITH_TIMEOUT(monitorOf(window, 0).DriverState(), 1, 5000);
        openConfigurationMenu(window);
        QVERIFY(window.menus().mnuRemove->isEnabled());
        QVERIFY(window.menus().mnuAboutApp->isEnabled());

        // The Configure commands open the real dialogs over the stopped welder; each is
        // cancelled from the event loop and changes nothing.
        QStringList dialogs;
        for (QAction *command : {window.menus().mnuSettings, window.menus().mnuDataLogging,
                                 window.menus().mnuSPCSampling}) {
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
        QCOMPARE(monitorOf(window, 0).DriverState(), 0);
        QCOMPARE(monitorOf(window, 1).DriverState(), 0);
        QVERIFY(configurations.open(QIODevice::ReadOnly));
        const QByteArray saved = configurations.readAll();
        QVERIFY(saved.startsWith("<Configurations><Configuration><Equipment Name=\"Press 1\""));
        QVERIFY(saved.contains("Name=\"Press 2\""));
        QVERIFY2(!QFile::exists(QDir(data).filePath(QStringLiteral("corvane-monitor.errors.log"))),
                 "a failure was reported");
    }
};

QTEST_MAIN(TestDesktopWindow)
#include "tst_desktopwindow.moc"

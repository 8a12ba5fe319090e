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
        window.menus().mnuConfiguration->popup(QPoint(0, 0));
        window.menus().mnuConfiguration->hide();
    }

    static void writeFile(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
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
        writeFile(QDir(data).filePath(QStringLiteral("corvane-monitor.ini")),
                  "[PREFERENCES]\nMEASUREMENT_SYSTEM=0\n");
        QFile configurations(QDir(data).filePath(QStringLiteral("corvane-monitor.cfg")));
        writeFile(configurations.fileName(),
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

        StartupOptions options;
        options.program.dataFolder = data;
        options.language = QStringLiteral("en");
        DesktopServices services(options, QStringLiteral("Corvane Ostrel"),
                                 QCoreApplication::applicationDirPath());
        dlgMain window(services.windowServices());
        window.Form_Load();
        window.show();
        const MainMenus &menus = window.menus();

        QCOMPARE(window.ConfigurationCount(), 2);
        auto *faces = window.findChild<QStackedWidget *>(QStringLiteral("CorvaneUsw1"));
        auto *face = qobject_cast<CorvaneUsw *>(faces->currentWidget());
        QVERIFY(face);
        QCOMPARE(&face->monitor(), &monitorOf(window, 0));
        QCOMPARE(monitorOf(window, 0).configurationName(), QStringLiteral("Press 1"));
        QCOMPARE(monitorOf(window, 0).rowSelection(0), 2);

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
        // one weld.
        menus.mnuStartStop->trigger();
        QTRY_VERIFY_WITH_TIMEOUT(supply1.hasPendingConnections(), 5000);
        QTcpSocket *link = supply1.nextPendingConnection();
        QTRY_COMPARE_WITH_TIMEOUT(monitorOf(window, 0).DriverState(), 3, 5000);
        link->write(SampleWelds::stream(1));
        QTRY_COMPARE_WITH_TIMEOUT(monitorOf(window, 0).totalWelds(), 1, 5000);

        // While it collects its settings stay closed; the other welder's do not.
        openConfigurationMenu(window);
        QVERIFY(!menus.mnuRemove->isEnabled() && !menus.mnuSettings->isEnabled());
        QVERIFY(!menus.mnuAboutApp->isEnabled());
        QCOMPARE(menus.mnuStartStop->text(), QStringLiteral("&Stop"));
        window.tabStrip()->setCurrentIndex(1);
        QCOMPARE(&qobject_cast<CorvaneUsw *>(faces->currentWidget())->monitor(),
                 &monitorOf(window, 1));
        openConfigurationMenu(window);
        QVERIFY(menus.mnuRemove->isEnabled());
        QCOMPARE(menus.mnuStartStop->text(), QStringLiteral("&Start"));

        // Hidden in the tray the monitor goes on collecting.
        QVERIFY(!window.close());
        link->write(SampleWelds::stream(2).mid(SampleWelds::stream(1).size()));
        QTRY_COMPARE_WITH_TIMEOUT(monitorOf(window, 0).totalWelds(), 2, 5000);

        window.tabStrip()->setCurrentIndex(0);
        menus.mnuStartStop->trigger();
        QTRY_COMPARE_WITH_TIMEOUT(monitorOf(window, 0).DriverState(), 1, 5000);
        openConfigurationMenu(window);
        QVERIFY(menus.mnuRemove->isEnabled() && menus.mnuAboutApp->isEnabled());

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

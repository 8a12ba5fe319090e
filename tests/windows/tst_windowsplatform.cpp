#include "platform/ProgramFiles.h"
#include "platform/QtSerialPort.h"
#include "platform/spc/SqlDatabase.h"
#include "shell/ShellSettings.h"

#include <QDir>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

// The Windows headers need windows.h first.
#include <windows.h>

#include <knownfolders.h>
#include <shlobj.h>

// The behaviour that only Windows has, on the real system calls and registry (under
// wine on the build machine).
class TestWindowsPlatform : public QObject
{
    Q_OBJECT

private:
    static constexpr const char *kMachineKey = "HKLM\\Software\\Corvane\\Monitor";
    static constexpr const char *kUserKey = "HKCU\\Software\\Corvane\\Monitor";

    // Runs reg.exe, the administrator's tool, on the registry the program reads.
    static bool reg(const QStringList &arguments)
    {
        QProcess process;
        process.start(QStringLiteral("reg"), arguments);
        return process.waitForFinished(30000) && process.exitCode() == 0;
    }

    static void store(const char *root, const QString &section, const QString &key,
                      const QString &value)
    {
        if (value.isEmpty())
            return;
        QVERIFY(reg({"add", QLatin1String(root) + u'\\' + section, "/v", key, "/d", value, "/f"}));
    }

    static void forgetSettings()
    {
        reg({"delete", QLatin1String(kMachineKey), "/f"});
        reg({"delete", QLatin1String(kUserKey), "/f"});
    }

    static QString knownProgramDataFolder()
    {
        PWSTR path = nullptr;
        if (FAILED(::SHGetKnownFolderPath(FOLDERID_ProgramData, 0, nullptr, &path)))
            return {};
        const QString folder = QDir::fromNativeSeparators(QString::fromWCharArray(path));
        ::CoTaskMemFree(path);
        return folder;
    }

    static void startMonitor(QProcess &process, const QString &dataFolder, bool headless = true)
    {
        QStringList arguments{QStringLiteral("--data-dir"), dataFolder};
        if (headless)
            arguments.prepend(QStringLiteral("--headless"));
        // What the monitor says comes on both of its streams: the start line on standard
        // output, refusals and hand-overs on standard error.
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QStringLiteral(CORVANE_MONITOR_EXE), arguments);
        QVERIFY(process.waitForStarted(10000));
    }

private slots:
    void initTestCase()
    {
        // The registry, not a file, is the store under test.
        qunsetenv(ShellSettings::kSettingsFileEnvironment);
        qunsetenv(ProgramFiles::kDataDirEnvironment);
        forgetSettings();
    }

    void cleanupTestCase() { forgetSettings(); }

    void dataFolderIsCorvaneInProgramData()
    {
        const QString programData = knownProgramDataFolder();
        QVERIFY(!programData.isEmpty());
        const QString expected = QDir(programData).filePath(QStringLiteral("Corvane"));
        QCOMPARE(ProgramFiles::resolveDataFolder({}).toLower(), expected.toLower());
    }

    void settingsComeFromTheRegistry_data()
    {
        QTest::addColumn<QString>("machine");
        QTest::addColumn<QString>("user");
        QTest::addColumn<QString>("title");
        QTest::newRow("nothing stored") << ""
                                        << ""
                                        << "Corvane Ostrel";
        QTest::newRow("machine") << "Plant 2"
                                 << ""
                                 << "Plant 2";
        QTest::newRow("user over machine") << "Plant 2"
                                           << "Line 7"
                                           << "Line 7";
        QTest::newRow("comma kept") << "Corvane Ostrel, Plant 2"
                                    << ""
                                    << "Corvane Ostrel, Plant 2";
    }

    void settingsComeFromTheRegistry()
    {
        QFETCH(QString, machine);
        QFETCH(QString, user);
        forgetSettings();
        store(kMachineKey, QStringLiteral("OEM"), QStringLiteral("OSTREL"), machine);
        store(kUserKey, QStringLiteral("OEM"), QStringLiteral("OSTREL"), user);
        store(kMachineKey, QLatin1String(ProgramFiles::kProgramBaseName), QStringLiteral("File"),
              QStringLiteral("D:\\Weld\\lines.cfg"));
        const std::unique_ptr<SettingsStore> settings = ShellSettings::openSettingsStore();
        QTEST(ShellSettings::applicationTitle(*settings), "title");
        QCOMPARE(ShellSettings::buildNumber(*settings), QStringLiteral("----"));
        QCOMPARE(ShellSettings::configurationsPath(*settings, QStringLiteral("x.cfg")),
                 QStringLiteral("D:\\Weld\\lines.cfg"));
    }

    void comPortNumbers()
    {
        QString reason;
        QCOMPARE(QtSerialPort::deviceFor(QStringLiteral("3"), &reason), QStringLiteral("COM3"));
        QCOMPARE(QtSerialPort::deviceFor(QStringLiteral("12"), &reason), QStringLiteral("COM12"));
        QVERIFY(QtSerialPort::deviceFor(QStringLiteral("0"), &reason).isEmpty());
        QVERIFY(!reason.isEmpty());

        // A port the system lists above 9 is offered by its number, once.
        const QString deviceMap = QStringLiteral("HKLM\\HARDWARE\\DEVICEMAP\\SERIALCOMM");
        QVERIFY(reg({"add", deviceMap, "/v", "\\Device\\CorvaneTest12", "/d", "COM12", "/f"}));
        const QStringList choices = QtSerialPort::portChoices();
        reg({"delete", deviceMap, "/v", "\\Device\\CorvaneTest12", "/f"});
        QCOMPARE(choices.mid(0, 9), QStringList({"1", "2", "3", "4", "5", "6", "7", "8", "9"}));
        QCOMPARE(choices.count(QStringLiteral("12")), 1);
        QCOMPARE(QSet<QString>(choices.begin(), choices.end()).size(), choices.size());

        // A number with no port behind it is refused on opening, naming the port.
        QtSerialPort port;
        SerialSettings settings;
        settings.port = QStringLiteral("57");
        QVERIFY(!port.open(settings, &reason));
        QVERIFY2(reason.contains(QLatin1String("COM57")), qPrintable(reason));
    }

    void postgresqlIsRefusedWithAReason()
    {
        qlaDatabase6::SqlDatabase database;
        database.setDataSourceName(QStringLiteral("postgresql://spc@127.0.0.1:1/quality"));
        QVERIFY(!database.openConnection());
        QVERIFY2(database.lastErrorText().startsWith(QLatin1String("PostgreSQL is unavailable")),
                 qPrintable(database.lastErrorText()));
    }

    // Between real processes over the platform's lock and local socket (a named pipe).
    void secondStartHandsOverToTheRunningOne()
    {
        // No configurations path from the registry: the monitors read the folder's file.
        forgetSettings();
        QTemporaryDir folder;
        QProcess first;
        startMonitor(first, folder.path());
        QByteArray seen;
        QTRY_VERIFY2_WITH_TIMEOUT((seen += first.readAll()).contains("watching"),
                                  seen.constData(), 20000);

        // A window start hands over and ends; a second service on the folder is refused.
        QProcess window;
        startMonitor(window, folder.path(), false);
        QVERIFY2(window.waitForFinished(20000), "the window start did not end");
        QCOMPARE(window.exitCode(), 0);
        QTRY_VERIFY_WITH_TIMEOUT(
            (seen += first.readAll()).contains("another start asked"), 10000);
        QProcess service;
        startMonitor(service, folder.path());
        QVERIFY(service.waitForFinished(20000));
        QCOMPARE(service.exitCode(), 1);
        QVERIFY(service.readAll().contains("an instance already runs"));
        QCOMPARE(first.state(), QProcess::Running);
        first.kill();
        QVERIFY(first.waitForFinished(10000));
    }
};

QTEST_GUILESS_MAIN(TestWindowsPlatform)
#include "tst_windowsplatform.moc"

#include "platform/ProgramError.h"
#include "platform/ProgramFiles.h"
#include "shell/HeadlessOptions.h"
#include "shell/ShellFiles.h"
#include "shell/ShellSettings.h"
#include "shell/TerminationSignals.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

// What the program works out before it loads any configuration: the settings store,
// the files in the data folder, the measurement system, the command line, and the
// signals that end a headless run.
class TestStartup : public QObject
{
    Q_OBJECT

private:
    // A fresh folder for every case: QSettings keeps what it read of a file and would not
    // notice a rewrite of the same size within the same second.
    std::unique_ptr<QTemporaryDir> m_folderOwner;
    QTemporaryDir *m_folder = nullptr;

    QString settingsFile() const { return m_folder->filePath(QStringLiteral("settings.ini")); }

    static void writeFile(const QString &path, const QByteArray &content)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(content);
    }

private slots:
    void init()
    {
        m_folderOwner = std::make_unique<QTemporaryDir>();
        m_folder = m_folderOwner.get();
        qputenv(ShellSettings::kSettingsFileEnvironment, settingsFile().toUtf8());
    }

    void cleanupTestCase() { qunsetenv(ShellSettings::kSettingsFileEnvironment); }

    void settingsDefaults()
    {
        const auto store = ShellSettings::openSettingsStore();
        QCOMPARE(ShellSettings::applicationTitle(*store), QStringLiteral("Corvane Ostrel"));
        QCOMPARE(ShellSettings::buildNumber(*store), QStringLiteral("----"));
        const ShellFiles files = ShellFiles::resolve(ProgramFiles(m_folder->path()), *store);
        QCOMPARE(files.dataFolder, m_folder->path());
        QCOMPARE(files.defaultConfigurationsPath, m_folder->filePath("corvane-monitor.cfg"));
        QCOMPARE(files.configurationsPath, files.defaultConfigurationsPath);
        QCOMPARE(files.preferencesPath, m_folder->filePath("corvane-monitor.ini"));
    }

    void settingsStored()
    {
        writeFile(settingsFile(), "[OEM]\nOSTREL=Corvane Ostrel, Plant 2\n"
                                  "[Corvane]\nBuild_Number=1.4.0.117\n"
                                  "[corvane-monitor]\nFile=/srv/welding/line 3.cfg\n");
        const auto store = ShellSettings::openSettingsStore();
        QCOMPARE(ShellSettings::applicationTitle(*store),
                 QStringLiteral("Corvane Ostrel, Plant 2"));
        QCOMPARE(ShellSettings::buildNumber(*store), QStringLiteral("1.4.0.117"));
        const ShellFiles files = ShellFiles::resolve(ProgramFiles(m_folder->path()), *store);
        QCOMPARE(files.configurationsPath, QStringLiteral("/srv/welding/line 3.cfg"));
        // The override moves the configurations file only.
        QCOMPARE(files.defaultConfigurationsPath, m_folder->filePath("corvane-monitor.cfg"));
        QCOMPARE(files.preferencesPath, m_folder->filePath("corvane-monitor.ini"));
    }

    void measurementSystem_data()
    {
        QTest::addColumn<QByteArray>("preferences");
        QTest::addColumn<int>("expected"); // -1: the regional default
        QTest::newRow("metric") << QByteArray("[PREFERENCES]\nMEASUREMENT_SYSTEM=0\n") << 0;
        QTest::newRow("inch") << QByteArray("[PREFERENCES]\nMEASUREMENT_SYSTEM=1\n") << 1;
        QTest::newRow("two") << QByteArray("[PREFERENCES]\nMEASUREMENT_SYSTEM=2\n") << -1;
        QTest::newRow("text") << QByteArray("[PREFERENCES]\nMEASUREMENT_SYSTEM=inch\n") << -1;
        QTest::newRow("absent") << QByteArray("[PREFERENCES]\n") << -1;
        QTest::newRow("no file") << QByteArray() << -1;
    }

    void measurementSystem()
    {
        QFETCH(QByteArray, preferences);
        QFETCH(int, expected);
        const QString preferencesPath = m_folder->filePath(QStringLiteral("corvane-monitor.ini"));
        QFile::remove(preferencesPath);
        if (!preferences.isEmpty())
            writeFile(preferencesPath, preferences);
        const auto store = ShellSettings::openSettingsStore();
        for (const MeasurementSystem regional :
             {MeasurementSystem::Metric, MeasurementSystem::US}) {
            const ShellFiles files =
                ShellFiles::resolve(ProgramFiles(m_folder->path()), *store, regional);
            QCOMPARE(int(files.measurementSystem), expected < 0 ? int(regional) : expected);
        }
    }

    void dataFolderIsCreated()
    {
        const QString nested = m_folder->filePath(QStringLiteral("home/.local/share/Corvane"));
        ensureDataFolder(nested);
        QVERIFY(QDir(nested).exists());
        ensureDataFolder(nested);

        writeFile(m_folder->filePath(QStringLiteral("plain-file")), "x");
        QVERIFY_THROWS_EXCEPTION(ProgramError,
                                 ensureDataFolder(m_folder->filePath("plain-file/Corvane")));
    }

    void commandLine_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<bool>("headless");
        QTest::addColumn<QString>("dataFolder");
        QTest::addColumn<bool>("verbose");
        QTest::addColumn<bool>("debug");
        QTest::newRow("nothing") << QStringList{} << true << false << "" << false << false;
        QTest::newRow("all") << QStringList{"--headless", "--data-dir", "/d", "--verbose"} << true
                             << true << "/d" << true << false;
        QTest::newRow("data-dir=")
            << QStringList{"--data-dir=/e", "--headless"} << true << true << "/e" << false << false;
        QTest::newRow("debug first")
            << QStringList{"/DEBUG", "--headless"} << true << true << "" << false << true;
        QTest::newRow("debug last")
            << QStringList{"--headless", "/Debug"} << true << true << "" << false << true;
        QTest::newRow("unknown option")
            << QStringList{"--headles"} << false << false << "" << false << false;
        QTest::newRow("data-dir without folder")
            << QStringList{"--data-dir"} << false << false << "" << false << false;
        QTest::newRow("empty data-dir")
            << QStringList{"--data-dir="} << false << false << "" << false << false;
        QTest::newRow("stray argument")
            << QStringList{"--headless", "now"} << false << false << "" << false << false;
    }

    void commandLine()
    {
        QFETCH(QStringList, arguments);
        QFETCH(bool, valid);
        arguments.prepend(QStringLiteral("corvane-monitor"));
        QString error;
        const std::optional<HeadlessOptions> options = HeadlessOptions::parse(arguments, &error);
        QCOMPARE(options.has_value(), valid);
        if (!valid) {
            QVERIFY(!error.isEmpty());
            return;
        }
        QTEST(options->headless, "headless");
        QTEST(options->dataFolder, "dataFolder");
        QTEST(options->verbose, "verbose");
        QTEST(options->debugMode, "debug");
    }

    void terminationSignalsReachTheEventLoop()
    {
        TerminationSignals termination;
        QVERIFY(termination.isActive());
        QSignalSpy requested(&termination, &TerminationSignals::terminationRequested);
        std::raise(SIGTERM);
        QVERIFY(requested.wait(5000));
        QCOMPARE(requested.first().first().toInt(), SIGTERM);
        std::raise(SIGINT);
        QTRY_COMPARE(requested.count(), 2);
        QCOMPARE(requested.last().first().toInt(), SIGINT);
    }
};

QTEST_GUILESS_MAIN(TestStartup)
#include "tst_startup.moc"

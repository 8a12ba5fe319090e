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

    static QString describe(const HeadlessOptions &options)
    {
        QStringList words{options.headless ? QStringLiteral("headless") : QStringLiteral("window")};
        if (!options.dataFolder.isEmpty())
            words << options.dataFolder;
        if (options.verbose)
            words << QStringLiteral("verbose");
        if (options.debugMode)
            words << QStringLiteral("debug");
        return words.join(u' ');
    }

private slots:
    void init()
    {
        m_folderOwner = std::make_unique<QTemporaryDir>();
        m_folder = m_folderOwner.get();
        qputenv(ShellSettings::kSettingsFileEnvironment, settingsFile().toUtf8());
    }

    void cleanupTestCase() { qunsetenv(ShellSettings::kSettingsFileEnvironment); }

    void settingsStore_data()
    {
        QTest::addColumn<QByteArray>("settings");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("build");
        QTest::addColumn<QString>("configurations"); // empty: the one in the data folder
        QTest::newRow("defaults") << QByteArray() << QString("Corvane Ostrel") << QString("----")
                                  << QString();
        // The override moves the configurations file only.
        QTest::newRow("stored") << QByteArray("[OEM]\nOSTREL=Corvane Ostrel, Plant 2\n"
                                              "[Corvane]\nBuild_Number=1.4.0.117\n"
                                              "[corvane-monitor]\nFile=/srv/welding/line 3.cfg\n")
                                << QString("Corvane Ostrel, Plant 2") << QString("1.4.0.117")
                                << QString("/srv/welding/line 3.cfg");
    }

    void settingsStore()
    {
        QFETCH(QByteArray, settings);
        QFETCH(QString, configurations);
        if (!settings.isEmpty())
            writeFile(settingsFile(), settings);
        const auto store = ShellSettings::openSettingsStore();
        QTEST(ShellSettings::applicationTitle(*store), "title");
        QTEST(ShellSettings::buildNumber(*store), "build");
        const ShellFiles files = ShellFiles::resolve(ProgramFiles(m_folder->path()), *store);
        QCOMPARE(files.dataFolder, m_folder->path());
        QCOMPARE(files.defaultConfigurationsPath, m_folder->filePath("corvane-monitor.cfg"));
        QCOMPARE(files.configurationsPath,
                 configurations.isEmpty() ? files.defaultConfigurationsPath : configurations);
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

    // The options read, in the words of describe(); "refused" for a command line that
    // is refused with a message.
    void commandLine_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("expected");
        QTest::newRow("nothing") << QStringList{} << "window";
        QTest::newRow("all") << QStringList{"--headless", "--data-dir", "/d", "--verbose"}
                             << "headless /d verbose";
        QTest::newRow("data-dir=") << QStringList{"--data-dir=/e", "--headless"} << "headless /e";
        QTest::newRow("debug first") << QStringList{"/DEBUG", "--headless"} << "headless debug";
        QTest::newRow("debug last") << QStringList{"--headless", "/Debug"} << "headless debug";
        QTest::newRow("unknown option") << QStringList{"--headles"} << "refused";
        QTest::newRow("data-dir without folder") << QStringList{"--data-dir"} << "refused";
        QTest::newRow("empty data-dir") << QStringList{"--data-dir="} << "refused";
        QTest::newRow("stray argument") << QStringList{"--headless", "now"} << "refused";
    }

    void commandLine()
    {
        QFETCH(QStringList, arguments);
        arguments.prepend(QStringLiteral("corvane-monitor"));
        QString error;
        const std::optional<HeadlessOptions> options = HeadlessOptions::parse(arguments, &error);
        QCOMPARE(error.isEmpty(), options.has_value());
        QTEST(options ? describe(*options) : QStringLiteral("refused"), "expected");
    }

#ifdef Q_OS_UNIX
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
#endif
};

QTEST_GUILESS_MAIN(TestStartup)
#include "tst_startup.moc"

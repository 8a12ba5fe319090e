#include "ManualClock.h"

#include "platform/EventLog.h"
#include "platform/ProgramError.h"
#include "platform/ProgramFiles.h"
#include "platform/XMLSupport.h"
#include "shell/HeadlessOptions.h"
#include "shell/ShellFiles.h"
#include "shell/ShellSettings.h"
#include "shell/TerminationSignals.h"
#include "shell/XmlText.h"

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

// What the program works out before it loads any configuration (the settings store, the
// files in the data folder, the measurement system, the command line, the signals that
// end a headless run) and the files it writes: the event log and the XML text of the
// configurations file.
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

    static QByteArray readAll(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
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

    void eventLogAppendsLinesInCallOrder()
    {
        ManualClock clock;
        const QString path = m_folder->filePath(QStringLiteral("corvane-monitor.log"));
        QVERIFY(!QFile::exists(path));
        EventLog log(path, clock);
        log.WriteEventLog(QStringLiteral("Main"), QStringLiteral("WinSockError"), 10061,
                          QStringLiteral("Connection refused"), QStringLiteral("SCODE: 10061"));
        clock.advanceSeconds(61);
        log.WriteEventLog(QStringLiteral("Main"), QStringLiteral("Data Log Write"), -2147221504,
                          QStringLiteral("Disk\tfull"), QStringLiteral("/data/press.txt"));

        const QList<QByteArray> lines = readAll(path).split('\n');
        QCOMPARE(lines.size(), 3);
        QVERIFY(lines[2].isEmpty());
        // Each line starts with the time of its event: a minute apart, the same day.
        const QByteArray firstTime = lines[0].left(lines[0].indexOf('\t'));
        QVERIFY2(firstTime.contains("2026") && firstTime.contains("14"), firstTime.constData());
        QCOMPARE(lines[0].sliced(firstTime.size()),
                 "\tMain\tWinSockError\t10061\tConnection refused\tSCODE: 10061\r");
        // A TAB inside the description goes in as it is: the line has seven fields.
        const QList<QByteArray> fields = lines[1].split('\t');
        QCOMPARE(fields.size(), 7);
        QVERIFY(fields[0] != firstTime && fields[0].contains("2026"));
        QCOMPARE(fields[2], QByteArray("Data Log Write"));
        QCOMPARE(fields[3], QByteArray("-2147221504"));
        QCOMPARE(fields[4] + '\t' + fields[5], QByteArray("Disk\tfull"));
        QCOMPARE(fields[6], QByteArray("/data/press.txt\r"));
    }

    void attributeHelpers()
    {
        QDomDocument document;
        document.setContent(QStringLiteral("<Configuration><Sampling Enabled=\"True\"><Part "
                                           "Name=\"\"/></Sampling></Configuration>"));
        const QDomElement root = document.documentElement();
        const QDomElement part = XMLSupport::SelectXMLNode(root, "Sampling/Part").toElement();
        QCOMPARE(part.tagName(), QStringLiteral("Part"));
        QVERIFY(XMLSupport::SelectXMLNode(root, "Sampling/Process/Test").isNull());

        // An absent attribute gives the default's text; a present but empty one its value.
        QCOMPARE(XMLSupport::GetXMLAttribute(part, "Revision", 7), QStringLiteral("7"));
        QCOMPARE(XMLSupport::GetXMLAttribute(part, "Name", "default"), QString());
        QCOMPARE(XMLSupport::GetXMLAttribute(part, "Active", true), QStringLiteral("True"));
        // The element itself missing gives the empty text, not the default: kept as it is.
        const QDomElement missing = XMLSupport::SelectXMLNode(root, "Nothing").toElement();
        QCOMPARE(XMLSupport::GetXMLAttribute(missing, "Revision", 7), QString());
        XMLSupport::SetXMLAttribute(missing, "Revision", 8);

        XMLSupport::SetXMLAttribute(part, "Enabled", false);
        XMLSupport::SetXMLAttribute(part, "Period", 2.5);
        QCOMPARE(part.attribute("Enabled"), QStringLiteral("False"));
        QCOMPARE(part.attribute("Period"), QStringLiteral("2.5"));
    }

    void xmlTextIsTheSameOnEveryRun()
    {
        QDomDocument document;
        QDomElement root = document.createElement(QStringLiteral("Configurations"));
        document.appendChild(root);
        QDomElement equipment = document.createElement(QStringLiteral("Equipment"));
        root.appendChild(equipment);
        // Written in the order of the configuration's layout (Name, Settings), then the
        // attributes it does not know by name.
        equipment.setAttribute(QStringLiteral("Settings"), QStringLiteral("IP:10.1.1.9:1000"));
        equipment.setAttribute(QStringLiteral("Name"), QStringLiteral("Horn \"B\" & <C>"));
        equipment.setAttribute(QStringLiteral("Note"), QStringLiteral("line 1\nline 2\tend"));
        equipment.setAttribute(QStringLiteral("Address"), QString());
        root.appendChild(document.createElement(QStringLiteral("Empty")));
        QDomElement text = document.createElement(QStringLiteral("Text"));
        text.appendChild(document.createTextNode(QStringLiteral("a < b & \"c\"")));
        root.appendChild(text);

        const QString expected = QStringLiteral(
            "<Configurations><Equipment Name=\"Horn &quot;B&quot; &amp; &lt;C&gt;\" "
            "Settings=\"IP:10.1.1.9:1000\" Address=\"\" Note=\"line 1&#xa;line 2&#x9;end\"/>"
            "<Empty/>"
            "<Text>a &lt; b &amp; \"c\"</Text></Configurations>");
        QCOMPARE(xmlText(root), expected);

        // Read back, every value is what was set.
        QDomDocument reread;
        QVERIFY(reread.setContent(expected));
        const QDomElement again = reread.documentElement().firstChildElement("Equipment");
        QCOMPARE(again.attribute("Name"), QStringLiteral("Horn \"B\" & <C>"));
        QCOMPARE(again.attribute("Note"), QStringLiteral("line 1\nline 2\tend"));
        QCOMPARE(xmlText(reread.documentElement()), expected);
    }

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

    // The preferences file of the data folder decides the units; without one the region.
    void measurementSystem()
    {
        const auto store = ShellSettings::openSettingsStore();
        const auto resolved = [&](MeasurementSystem regional) {
            return ShellFiles::resolve(ProgramFiles(m_folder->path()), *store, regional)
                .measurementSystem;
        };
        QCOMPARE(resolved(MeasurementSystem::US), MeasurementSystem::US);
        QCOMPARE(resolved(MeasurementSystem::Metric), MeasurementSystem::Metric);
        writeFile(m_folder->filePath(QStringLiteral("corvane-monitor.ini")),
                  "[PREFERENCES]\nMEASUREMENT_SYSTEM=1\n");
        QCOMPARE(resolved(MeasurementSystem::Metric), MeasurementSystem::US);
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

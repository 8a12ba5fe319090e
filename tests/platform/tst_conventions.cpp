#include "ManualClock.h"
#include "RecordingErrorReport.h"

#include "platform/ErrorPassing.h"
#include "platform/LoggedErrorReport.h"
#include "platform/MeasurementSystem.h"
#include "platform/ProgramFiles.h"
#include "platform/qlxLanguage.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

// The program's conventions: how failures travel and are reported, how captions are
// translated, and the program-wide settings read at start.
class TestConventions : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

    // Writes a file of the given name into the test folder and returns its path.
    QString writeFile(const QString &name, const QByteArray &content)
    {
        const QString path = m_dir.filePath(name);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("cannot write %s", qPrintable(path));
        return path;
    }

private slots:
    void failurePathNamesEveryProcedure()
    {
        try {
            passOn("Outer.Call", [] {
                passOn("Inner.Call", [] {
                    throw ProgramError::raised(QStringLiteral("broken"),
                                               QStringLiteral("Inner.Call"));
                });
            });
            QFAIL("the failure did not pass on");
        } catch (const ProgramError &error) {
            QCOMPARE(error.source(), QStringLiteral("Inner.Call < Outer.Call"));
        }
    }

    void eventProcedureReportsAndCompletes()
    {
        RecordingErrorReport report;
        const bool completed = reportFailures(report, "dlgMain.mnuAdd_Click", [] {
            passOn("dlgMain.AddConfiguration",
                   [] { throw ProgramError::overflow(QStringLiteral("CorvaneUsw.Count")); });
        });
        QVERIFY(!completed);
        QCOMPARE(report.count(), 1);
        QCOMPARE(report.last().location, QStringLiteral("dlgMain.mnuAdd_Click"));
        QCOMPARE(report.last().number, ProgramError::kOverflow);

        QVERIFY(reportFailures(report, "dlgMain.Quiet", [] {}));
        QCOMPARE(report.count(), 1);
    }

    void loggedReportAppendsLines()
    {
        const ManualClock clock;
        const QString path = m_dir.filePath(QStringLiteral("errors.log"));
        LoggedErrorReport report(path, QStringLiteral("corvane-monitor"), clock, false);
        report.Show(QStringLiteral("A.B"), 9, QStringLiteral("Subscript out of range"),
                    QStringLiteral("X.Y"));
        report.Show(QStringLiteral("C.D"), 6, QStringLiteral("Overflow"), QStringLiteral("Z"));
        QFile log(path);
        QVERIFY(log.open(QIODevice::ReadOnly));
        const QList<QByteArray> lines = log.readAll().split('\n');
        QCOMPARE(lines.size(), 3); // two lines, each ended by CR LF
        QVERIFY(lines[0].endsWith("\tcorvane-monitor\tA.B\t9\tSubscript out of range\tX.Y\r"));
        QVERIFY(lines[1].contains("\tC.D\t6\tOverflow\tZ\r"));

        // A log that cannot be written must not take the reporting procedure down.
        LoggedErrorReport unwritable(m_dir.filePath(QStringLiteral("missing/errors.log")),
                                     QStringLiteral("p"), clock, false);
        unwritable.Show(QStringLiteral("A.B"), 1, QStringLiteral("x"), QString());
    }

    void translation_data()
    {
        QTest::addColumn<QString>("token");
        QTest::addColumn<QString>("expected");
        QTest::newRow("translated") << "6052|Connected"
                                    << "Verbunden";
        QTest::newRow("trailing blank kept") << "24|Time "
                                             << "Zeit ";
        QTest::newRow("escapes") << "7|x"
                                 << "a\tb\\c";
        QTest::newRow("no entry: default") << "6045|Closed"
                                           << "Closed";
        QTest::newRow("default keeps blanks") << "6008|Energy "
                                              << "Energy ";
        QTest::newRow("bar in default text") << "3|a|b"
                                             << "a|b";
        QTest::newRow("no number") << "plain text"
                                   << "plain text";
        QTest::newRow("N before bar not a number") << "x|y"
                                                   << "x|y";
    }

    void translation()
    {
        QFETCH(QString, token);
        QFETCH(QString, expected);
        const QString path = writeFile(QStringLiteral("table.lang"),
                                       "# German\n6052|Verbunden\r\n24|Zeit \n\n7|a\\tb\\\\c\n");
        qlxLanguage language;
        QString error;
        QVERIFY2(language.loadTable(path, &error), qPrintable(error));
        QCOMPARE(language.Translate(token), expected);
    }

    void malformedTableIsRefused()
    {
        const QString path = writeFile(QStringLiteral("bad.lang"), "6052|Verbunden\nnot a line\n");
        qlxLanguage language;
        QString error;
        QVERIFY(!language.loadTable(path, &error));
        QVERIFY(error.contains(QLatin1String(":2:")));
        QCOMPARE(language.Translate(u"6052|Connected"), QStringLiteral("Verbunden"));
        QVERIFY(!language.loadTable(m_dir.filePath(QStringLiteral("absent.lang")), &error));
    }

    void measurementSystem_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<int>("expected");
        QTest::newRow("metric") << QByteArray("[PREFERENCES]\nMEASUREMENT_SYSTEM=0\n") << 0;
        QTest::newRow("inch") << QByteArray("[PREFERENCES]\nMEASUREMENT_SYSTEM=1\n") << 1;
        QTest::newRow("two") << QByteArray("[PREFERENCES]\nMEASUREMENT_SYSTEM=2\n") << -1;
        QTest::newRow("text") << QByteArray("[PREFERENCES]\nMEASUREMENT_SYSTEM=inch\n") << -1;
        QTest::newRow("absent key") << QByteArray("[PREFERENCES]\nOTHER=1\n") << -1;
        QTest::newRow("other section") << QByteArray("[X]\nMEASUREMENT_SYSTEM=1\n") << -1;
    }

    void measurementSystem()
    {
        QFETCH(QByteArray, content);
        QFETCH(int, expected);
        const QString path = writeFile(QTest::currentDataTag() + QStringLiteral(".ini"), content);
        for (const MeasurementSystem regional :
             {MeasurementSystem::Metric, MeasurementSystem::US}) {
            const int want = expected < 0 ? int(regional) : expected;
            QCOMPARE(int(readMeasurementSystem(path, regional)), want);
        }
        QCOMPARE(readMeasurementSystem(m_dir.filePath(QStringLiteral("none.ini")),
                                       MeasurementSystem::US),
                 MeasurementSystem::US);
    }

    void regionalUnitSystem()
    {
        QCOMPARE(regionalMeasurementSystem(QLocale(QLocale::English, QLocale::UnitedStates)),
                 MeasurementSystem::US);
        QCOMPARE(regionalMeasurementSystem(QLocale(QLocale::German, QLocale::Germany)),
                 MeasurementSystem::Metric);
        QCOMPARE(regionalMeasurementSystem(QLocale(QLocale::English, QLocale::UnitedKingdom)),
                 MeasurementSystem::Metric);
    }

    void dataFolderAndFiles()
    {
        qputenv(ProgramFiles::kDataDirEnvironment, "/tmp/from-environment");
        QCOMPARE(ProgramFiles::resolveDataFolder(), QStringLiteral("/tmp/from-environment"));
        QCOMPARE(ProgramFiles::resolveDataFolder(QStringLiteral("/tmp/explicit")),
                 QStringLiteral("/tmp/explicit"));
        qunsetenv(ProgramFiles::kDataDirEnvironment);
        QVERIFY(ProgramFiles::resolveDataFolder().endsWith(QLatin1String("/Corvane")));

        const ProgramFiles files(QStringLiteral("/data"));
        QCOMPARE(files.defaultConfigurationsPath(), QStringLiteral("/data/corvane-monitor.cfg"));
        QCOMPARE(files.preferencesPath(), QStringLiteral("/data/corvane-monitor.ini"));
        QCOMPARE(files.eventLogPath(), QStringLiteral("/data/corvane-monitor.log"));
    }

    void debugSwitch_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("expected");
        QTest::newRow("alone") << QStringList{"prog", "/debug"} << true;
        QTest::newRow("any case") << QStringList{"prog", "/DeBuG"} << true;
        QTest::newRow("inside an argument") << QStringList{"prog", "--x=/debugging"} << false;
        QTest::newRow("inside a folder")
            << QStringList{"prog", "--data-dir", "/srv/debug-line"} << false;
        QTest::newRow("folder named so") << QStringList{"prog", "/home/x/Debug"} << false;
        QTest::newRow("absent") << QStringList{"prog", "--debug"} << false;
    }

    void debugSwitch()
    {
        QFETCH(QStringList, arguments);
        QFETCH(bool, expected);
        QCOMPARE(debugSwitchPresent(arguments), expected);
    }
};

QTEST_GUILESS_MAIN(TestConventions)
#include "tst_conventions.moc"

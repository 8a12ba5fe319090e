#include "RecordingErrorReport.h"
#include "ScratchDatabase.h"
#include "TestSuites.h"

#include "platform/ProgramFiles.h"
#include "platform/spc/SqlDatabase.h"
#include "sampling/DatabaseSupport.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace qlaDatabase6;

namespace {

const ProgramFiles kFiles(QStringLiteral("/srv/Corvane"));

// A database object connected to the scratch database, which holds the plant.
#define PLANT_DATABASE(database, backend)                                                          \
    SCRATCH_DATABASE_ON(scratch, backend);                                                         \
    SqlDatabase database;                                                                          \
    QVERIFY(connectTo(database, scratch.dsn()));                                                   \
    fillPlant(database)

} // namespace

// Names into records: what the sampling and the monitor get back for parts,
// processes, tests, limits and groups, also when the database is down or broken.
class TestDatabaseSupport : public QObject
{
    Q_OBJECT

private slots:
    void libraryAvailabilityIsRememberedOnceTrue()
    {
        RecordingErrorReport errors;
        DatabaseSupport::LibraryFlag flag;
        // Each answer of the driver check in turn, counting the checks made.
        QList<bool> answers = {false, false, true, false};
        int checks = 0;
        const auto driverCheck = [&] { return answers.at(checks++); };
        DatabaseSupport support(errors, kFiles, driverCheck, flag, {});
        QList<bool> available;
        for (int i = 0; i < 4; ++i)
            available.append(support.DatabaseLibraryAvailable());
        QCOMPARE(available, (QList<bool>{false, false, true, true}));
        QCOMPARE(checks, 3);
        QVERIFY(flag.available);
        // The flag is shared: another object with it does not ask again.
        DatabaseSupport other(errors, kFiles, driverCheck, flag, {});
        QVERIFY(other.DatabaseLibraryAvailable());
        QCOMPARE(checks, 3);
        QVERIFY(errors.isEmpty());
    }

    void resolvesRecordsAndGroupsByName_data() { addBackendRows(); }
    void resolvesRecordsAndGroupsByName()
    {
        QFETCH(QString, backend);
        PLANT_DATABASE(database, backend);
        RecordingErrorReport errors;
        DatabaseSupport support(errors, kFiles);

        const Part part = support.ResolvePartByName(database, QStringLiteral("Housing"));
        QVERIFY(part.id() > 0);
        QVERIFY(part.groupId() > 0);
        QVERIFY(support.ResolveProcessByName(database, QStringLiteral("Spot weld")).id() > 0);
        const Test energy = support.ResolveTestByName(database, QStringLiteral("Energy"));
        QVERIFY(energy.id() > 0);
        QCOMPARE(support.ResolvePartByName(database, QStringLiteral("housing")).id(), part.id());
        QCOMPARE(support.ResolveTestByName(database, QStringLiteral("Peak Power")).id(), qint64(0));

        const SpecLimit limit = support.ResolveSpecLim(database, part.id(), energy.id());
        QCOMPARE((QList<double>{double(limit.limitFlags()), limit.upperSpecLimit(),
                                limit.lowerSpecLimit(), limit.upperWarningLimit()}),
                 (QList<double>{SpecLimit::kUpperSpecLimit | SpecLimit::kLowerSpecLimit |
                                    SpecLimit::kUpperWarningLimit,
                                900, 700, 850}));
        const Test weldTime = support.ResolveTestByName(database, QStringLiteral("Weld Time"));
        QCOMPARE(support.ResolveSpecLim(database, part.id(), weldTime.id()).limitFlags(), 0);

        // Groups: the record's own, or "Corvane" for none, an unknown name, or no connection.
        const auto groups = [&] {
            return QStringList{support.ResolvePartGroup(database, QStringLiteral("Housing")),
                               support.ResolveProcessGroup(database, QStringLiteral("Seal weld")),
                               support.ResolvePartGroup(database, QStringLiteral("Cover")),
                               support.ResolveProcessGroup(database, QStringLiteral("Spot weld")),
                               support.ResolvePartGroup(database, QStringLiteral("No such part"))};
        };
        QCOMPARE(groups(), (QStringList{"Line 3", "Line 3", "Corvane", "Corvane", "Corvane"}));
        QVERIFY2(errors.isEmpty(), errors.isEmpty() ? "" : qPrintable(errors.last().description));

        // A closed connection is not made again behind the user's back: nothing is found.
        database.closeConnection();
        QCOMPARE(groups(), QStringList(5, QStringLiteral("Corvane")));
        QCOMPARE(support.ResolvePartByName(database, QStringLiteral("Housing")).id(), qint64(0));
        QCOMPARE(support.ResolveProcessByName(database, QStringLiteral("Seal weld")).id(),
                 qint64(0));
        QCOMPARE(support.ResolveTestByName(database, QStringLiteral("Energy")).id(), qint64(0));
        QVERIFY(!database.isConnected());
        QVERIFY(errors.isEmpty());
    }

    void failuresAreReportedNotThrown()
    {
        PLANT_DATABASE(database, QStringLiteral("sqlite"));
        {
            // The tables go away behind the monitor's back.
            RawConnection other(scratch.dsn());
            QVERIFY(other.exec(QStringLiteral("PRAGMA foreign_keys = OFF")));
            QVERIFY2(other.exec(QStringLiteral("DROP TABLE parts")), qPrintable(other.errorText()));
            QVERIFY(other.exec(QStringLiteral("DROP TABLE spec_limits")));
        }
        RecordingErrorReport errors;
        DatabaseSupport support(errors, kFiles);
        QCOMPARE(support.ResolvePartByName(database, QStringLiteral("Housing")).id(), qint64(0));
        QCOMPARE(errors.count(), 1);
        QCOMPARE(errors.last().location, QStringLiteral("DatabaseSupport.ResolvePartByName"));
        QCOMPARE(errors.last().number, ProgramError::kProgramErrorNumber);
        QVERIFY2(errors.last().source.contains(QLatin1String("SqlDatabase.loadRecord")),
                 qPrintable(errors.last().source));

        QCOMPARE(support.ResolvePartGroup(database, QStringLiteral("Housing")),
                 QStringLiteral("Corvane"));
        QCOMPARE(errors.count(), 2);
        QCOMPARE(support.ResolveSpecLim(database, 1, 1).limitFlags(), 0);
        QCOMPARE(errors.last().location, QStringLiteral("DatabaseSupport.ResolveSpecLim"));
        // Tables that are still there are still found.
        QVERIFY(support.ResolveTestByName(database, QStringLiteral("Energy")).id() > 0);
        QCOMPARE(errors.count(), 3);
    }

    void viewErrorLogOpensTheEventLog()
    {
        RecordingErrorReport errors;
        DatabaseSupport::LibraryFlag flag;
        QList<DatabaseSupport::ViewerCommand> started;
        bool starts = true;
        QTemporaryDir folder;
        const ProgramFiles files(folder.path());
        DatabaseSupport support(
            errors, files, [] { return true; }, flag,
            [&](const DatabaseSupport::ViewerCommand &command) {
                started.append(command);
                return starts;
            });
        // Nothing logged yet: no viewer is started on an empty file.
        QCOMPARE(support.ViewErrorLog(), DatabaseSupport::LogView::Empty);
        QVERIFY(started.isEmpty());

        QFile log(files.eventLogPath());
        QVERIFY(log.open(QIODevice::WriteOnly));
        log.write("23.11.2026 14:00 Press 1: refused\r\n");
        log.close();
        QCOMPARE(support.ViewErrorLog(), DatabaseSupport::LogView::Shown);
        QCOMPARE(started.size(), 1);
        QCOMPARE(support.eventLogPath(), files.eventLogPath());
#ifdef Q_OS_WIN
        QCOMPARE(started.first().program, QStringLiteral("notepad.exe"));
        QCOMPARE(started.first().nativeArguments, u'"' + support.eventLogPath() + u'"');
#else
        QCOMPARE(started.first().arguments, QStringList{support.eventLogPath()});
#endif

        starts = false;
        QCOMPARE(support.ViewErrorLog(), DatabaseSupport::LogView::NoViewer);
        QVERIFY(errors.isEmpty());
    }
};

CORVANE_TEST_SUITE(TestDatabaseSupport)
#include "tst_databasesupport.moc"

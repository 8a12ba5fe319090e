#include "RecordingErrorReport.h"
#include "ScratchDatabase.h"

#include "platform/ProgramFiles.h"
#include "platform/spc/SqlDatabase.h"
#include "sampling/DatabaseSupport.h"

#include <QTest>

using namespace qlaDatabase6;

namespace {

const ProgramFiles kFiles(QStringLiteral("/srv/Corvane"));

// Parts, processes and tests of a plant: "Housing" and "Seal weld" in the group
// "Line 3", "Cover" and "Spot weld" in no group, limits for Housing/Energy.
void fillPlant(Database &database)
{
    database.createRecord(RecordKind::Group, QStringLiteral("Line 3"));
    database.createRecord(RecordKind::Part, QStringLiteral("Housing"), QStringLiteral("Line 3"));
    database.createRecord(RecordKind::Part, QStringLiteral("Cover"));
    database.createRecord(RecordKind::Process, QStringLiteral("Seal weld"),
                          QStringLiteral("Line 3"));
    database.createRecord(RecordKind::Process, QStringLiteral("Spot weld"));
    database.createRecord(RecordKind::Test, QStringLiteral("Energy"));
    database.createRecord(RecordKind::Test, QStringLiteral("Weld Time"));
    Part part;
    part.setName(QStringLiteral("Housing"));
    part.load(database);
    Test test;
    test.setName(QStringLiteral("Energy"));
    test.load(database);
    SpecLimit limit;
    limit.setPartId(part.id());
    limit.setTestId(test.id());
    limit.setUpperSpecLimit(900);
    limit.setLowerSpecLimit(700);
    limit.setUpperWarningLimit(850);
    database.setSpecLimit(limit);
}

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
        int checks = 0;
        bool driversLoad = false;
        DatabaseSupport support(
            errors, kFiles,
            [&] {
                ++checks;
                return driversLoad;
            },
            flag, [](const DatabaseSupport::ViewerCommand &) { return true; });
        QVERIFY(!support.DatabaseLibraryAvailable());
        QVERIFY(!support.DatabaseLibraryAvailable());
        QCOMPARE(checks, 2);
        driversLoad = true;
        QVERIFY(support.DatabaseLibraryAvailable());
        QCOMPARE(checks, 3);
        driversLoad = false;
        QVERIFY(support.DatabaseLibraryAvailable());
        QCOMPARE(checks, 3);
        QVERIFY(flag.available);
        QVERIFY(errors.isEmpty());

        // The flag is shared: another object with it does not ask again.
        DatabaseSupport other(errors, kFiles,
                              [&] {
                                  ++checks;
                                  return false;
                              },
                              flag, {});
        QVERIFY(other.DatabaseLibraryAvailable());
        QCOMPARE(checks, 3);
    }

    void resolvesRecordsByName_data() { addBackendRows(); }
    void resolvesRecordsByName()
    {
        SCRATCH_DATABASE(scratch);
        SqlDatabase database;
        database.setDataSourceName(scratch.dsn());
        QVERIFY2(database.openConnection(), qPrintable(database.lastErrorText()));
        fillPlant(database);
        RecordingErrorReport errors;
        DatabaseSupport support(errors, kFiles);

        const Part part = support.ResolvePartByName(database, QStringLiteral("Housing"));
        QVERIFY(part.id() > 0);
        QVERIFY(part.groupId() > 0);
        QVERIFY(support.ResolveProcessByName(database, QStringLiteral("Spot weld")).id() > 0);
        const Test energy = support.ResolveTestByName(database, QStringLiteral("Energy"));
        QVERIFY(energy.id() > 0);
        QCOMPARE(support.ResolvePartByName(database, QStringLiteral("housing")).id(), qint64(0));
        QCOMPARE(support.ResolveTestByName(database, QStringLiteral("Peak Power")).id(), qint64(0));

        const SpecLimit limit = support.ResolveSpecLim(database, part.id(), energy.id());
        QCOMPARE(limit.limitFlags(), SpecLimit::kUpperSpecLimit | SpecLimit::kLowerSpecLimit |
                                         SpecLimit::kUpperWarningLimit);
        QCOMPARE(limit.upperSpecLimit(), 900.0);
        QCOMPARE(limit.lowerSpecLimit(), 700.0);
        QCOMPARE(limit.upperWarningLimit(), 850.0);
        const Test weldTime = support.ResolveTestByName(database, QStringLiteral("Weld Time"));
        QCOMPARE(support.ResolveSpecLim(database, part.id(), weldTime.id()).limitFlags(), 0);
        QVERIFY2(errors.isEmpty(), errors.isEmpty() ? "" : qPrintable(errors.last().description));
    }

    void groupsFallBackToCorvane_data() { addBackendRows(); }
    void groupsFallBackToCorvane()
    {
        SCRATCH_DATABASE(scratch);
        SqlDatabase database;
        database.setDataSourceName(scratch.dsn());
        QVERIFY2(database.openConnection(), qPrintable(database.lastErrorText()));
        fillPlant(database);
        RecordingErrorReport errors;
        DatabaseSupport support(errors, kFiles);

        QCOMPARE(support.ResolvePartGroup(database, QStringLiteral("Housing")),
                 QStringLiteral("Line 3"));
        QCOMPARE(support.ResolveProcessGroup(database, QStringLiteral("Seal weld")),
                 QStringLiteral("Line 3"));
        QCOMPARE(support.ResolvePartGroup(database, QStringLiteral("Cover")),
                 QStringLiteral("Corvane"));
        QCOMPARE(support.ResolveProcessGroup(database, QStringLiteral("Spot weld")),
                 QStringLiteral("Corvane"));
        QCOMPARE(support.ResolvePartGroup(database, QStringLiteral("No such part")),
                 QStringLiteral("Corvane"));
        QVERIFY(errors.isEmpty());

        database.closeConnection();
        QCOMPARE(support.ResolvePartGroup(database, QStringLiteral("Housing")),
                 QStringLiteral("Corvane"));
        QVERIFY(errors.isEmpty());
    }

    void looksUpNothingWhileNotConnected()
    {
        SqlDatabase database;
        database.setDataSourceName(QStringLiteral("/nonexistent-corvane/spc.db"));
        RecordingErrorReport errors;
        DatabaseSupport support(errors, kFiles);
        const Part part = support.ResolvePartByName(database, QStringLiteral("Housing"));
        QCOMPARE(part.id(), qint64(0));
        QCOMPARE(support.ResolveProcessByName(database, QStringLiteral("Seal weld")).id(),
                 qint64(0));
        QCOMPARE(support.ResolveTestByName(database, QStringLiteral("Energy")).id(), qint64(0));
        QVERIFY(!database.isConnected());
        QVERIFY(database.lastErrorText().isEmpty());
        QVERIFY(errors.isEmpty());
    }

    void failuresAreReportedNotThrown()
    {
        ScratchDatabase scratch(QStringLiteral("sqlite"));
        QVERIFY(scratch.state() == ScratchDatabase::State::Ready);
        SqlDatabase database;
        database.setDataSourceName(scratch.dsn());
        QVERIFY(database.openConnection());
        fillPlant(database);
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
        DatabaseSupport support(
            errors, kFiles, [] { return true; }, flag,
            [&](const DatabaseSupport::ViewerCommand &command) {
                started.append(command);
                return starts;
            });
        support.ViewErrorLog();
        QCOMPARE(started.size(), 1);
        QCOMPARE(support.eventLogPath(), QStringLiteral("/srv/Corvane/corvane-monitor.log"));
#ifdef Q_OS_WIN
        QCOMPARE(started.first().program, QStringLiteral("notepad.exe"));
        QCOMPARE(started.first().nativeArguments, u'"' + support.eventLogPath() + u'"');
#else
        QCOMPARE(started.first().arguments, QStringList{support.eventLogPath()});
#endif
        QVERIFY(errors.isEmpty());

        starts = false;
        support.ViewErrorLog();
        QCOMPARE(errors.count(), 1);
        QCOMPARE(errors.last().location, QStringLiteral("DatabaseSupport.ViewErrorLog"));
        QVERIFY(errors.last().description.contains(support.eventLogPath()));
    }
};

QTEST_GUILESS_MAIN(TestDatabaseSupport)
#include "tst_databasesupport.moc"

#include "ScratchDatabase.h"

#include "platform/spc/DataSource.h"
#include "platform/spc/PasswordFile.h"
#include "platform/spc/Schema.h"
#include "platform/spc/SqlDatabase.h"

#include <QFile>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

using namespace qlaDatabase6;

namespace {

const QDateTime kPeriodEnd(QDate(2026, 11, 14), QTime(22, 10, 0, 250));

// A period of three welds: two sampled characteristics, the weld rate and one alarm
// group with two alarms, the way the monitor writes it.
Subgroup periodSubgroup(const QString &part, const QDateTime &time)
{
    Subgroup subgroup;
    subgroup.setHeader({true, 3, time, QStringLiteral("Line 3"), part, QStringLiteral("Corvane"),
                        QStringLiteral("Seal weld"), QStringLiteral("Corvane")});
    subgroup.AddTestItem(QStringLiteral("Energy"), TestItem::kMeasuredValue);
    subgroup.addValue(1, 812.5);
    subgroup.addValue(2, 799.25);
    subgroup.addValue(3, 0.1);
    subgroup.AddTestItem(QStringLiteral("Weld Time"), TestItem::kMeasuredValue);
    subgroup.addValue(1, 1.0 / 3.0);
    subgroup.AddTestItem(QStringLiteral("Data Rate"), TestItem::kMeasuredValue);
    subgroup.addValue(1, 0.6);
    subgroup.AddTestItem(QStringLiteral("Reject Part Alarms"), TestItem::kAlarmList);
    subgroup.addValue(1, 1.0, QStringLiteral("Peak Power, \"upper\" limit"));
    subgroup.addValue(2, 1.0, QStringLiteral("Überlast\nzweite Zeile"));
    return subgroup;
}

// A stored value with its subgroup's header, as text to compare.
QStringList valueText(qint64 subgroup, const SubgroupHeader &h, const QString &item, int kind,
                      const SubgroupValue &value)
{
    return {QString::number(subgroup),
            QString::number(h.dateTime.toMSecsSinceEpoch()),
            h.partGroup,
            h.part,
            h.processGroup,
            h.process,
            h.sourceTag,
            QString::number(h.valueCount),
            QString::number(h.flag),
            item,
            QString::number(kind),
            QString::number(value.sampleNumber),
            QString::number(value.value, 'g', 17),
            value.text};
}

// The five limits and the flag word of a part's and test's limit record.
QList<double> limitsOf(const SpecLimit &limit)
{
    return {double(limit.limitFlags()), limit.upperSpecLimit(), limit.lowerSpecLimit(),
            limit.upperWarningLimit(), limit.lowerWarningLimit()};
}

// Sets an environment variable, or unsets it for a null value, until the returned guard
// puts back what was there before.
[[nodiscard]] auto scopedEnvironment(const char *name, const QByteArray &value)
{
    auto restore = [name, had = qEnvironmentVariableIsSet(name), old = qgetenv(name)] {
        had ? qputenv(name, old) : qunsetenv(name);
    };
    value.isNull() ? qunsetenv(name) : qputenv(name, value);
    return qScopeGuard(restore);
}

constexpr QFile::Permissions kOwnerOnly = QFile::ReadOwner | QFile::WriteOwner;

} // namespace

// The SPC database on both servers (the schema and its migrations, records found by exact
// name, limits with their flag word, and subgroups stored whole or not at all), the data
// source name a configuration keeps, and where the server's password comes from.
class TestSpcDatabase : public QObject
{
    Q_OBJECT

private slots:
    void connectionsCreateSchemaAndStayIndependent_data() { addBackendRows(); }
    void connectionsCreateSchemaAndStayIndependent()
    {
        SCRATCH_DATABASE(scratch);
        {
            SqlDatabase database;
            QSignalSpy connected(&database, &Database::connected);
            QVERIFY(connectTo(database, scratch.dsn()));
            QCOMPARE(database.schemaVersion(), Schema::latestVersion());
        }
        RawConnection raw(scratch.dsn());
        QVERIFY2(raw.isOpen(), qPrintable(raw.errorText()));
        for (const char *table : {"spc_groups", "parts", "processes", "tests", "spec_limits",
                                  "subgroups", "test_items", "sample_values"})
            QVERIFY2(raw.scalar(QStringLiteral("SELECT COUNT(*) FROM %1").arg(QLatin1String(table)))
                         .isValid(),
                     table);
        QCOMPARE(raw.count(QStringLiteral("schema_version")), 1);

        // A second object finds the schema in place and leaves it as it is; objects on
        // one data source share one connection, which stays while any of them uses it.
        SqlDatabase writer;
        QVERIFY(connectTo(writer, scratch.dsn()));
        {
            SqlDatabase reader;
            QVERIFY(connectTo(reader, scratch.dsn()));
            QCOMPARE(reader.connectionName(), writer.connectionName());
            writer.createRecord(RecordKind::Part, QStringLiteral("Housing"));
            QCOMPARE(reader.listRecords(RecordKind::Part).size(), 1);
        }
        QCOMPARE(writer.listRecords(RecordKind::Part).size(), 1);

        // Another data source: the connection to the old one ends and is not made again
        // behind the user's back.
        writer.setDataSourceName(scratch.dsn() + QStringLiteral("-other"));
        QVERIFY(!writer.isConnected());
        QVERIFY_THROWS_EXCEPTION(ProgramError, writer.listRecords(RecordKind::Part));
    }

    void migratesOlderVersionForward_data() { addBackendRows(); }
    void migratesOlderVersionForward()
    {
        SCRATCH_DATABASE(scratch);
        {
            // A database as the first release left it, with data in it.
            RawConnection raw(scratch.dsn());
            QVERIFY2(raw.isOpen(), qPrintable(raw.errorText()));
            Schema::migrate(raw.database(), raw.dialect(), 1);
            QVERIFY2(raw.exec(QStringLiteral("INSERT INTO spc_groups (name) VALUES ('Line 1')")),
                     qPrintable(raw.errorText()));
            QVERIFY(raw.exec(QStringLiteral("INSERT INTO parts (name, group_id) VALUES (?, ?)"),
                             {QStringLiteral("Housing"),
                              raw.scalar(QStringLiteral("SELECT id FROM spc_groups"))}));
        }
        SqlDatabase database;
        QVERIFY(connectTo(database, scratch.dsn()));
        QCOMPARE(database.schemaVersion(), Schema::latestVersion());
        RawConnection raw(scratch.dsn());
        for (const char *index : {"subgroups_by_time", "subgroups_by_part", "subgroups_by_process",
                                  "test_items_by_subgroup", "sample_values_by_item"})
            QVERIFY2(raw.hasIndex(QLatin1String(index)), index);
        Part part;
        part.setName(QStringLiteral("Housing"));
        QVERIFY(part.load(database));
        QCOMPARE(part.groupName(), QStringLiteral("Line 1"));
        QVERIFY(periodSubgroup(QStringLiteral("Housing"), kPeriodEnd).store(database) > 0);
    }

    void refusesNewerSchema_data() { addBackendRows(); }
    void refusesNewerSchema()
    {
        SCRATCH_DATABASE(scratch);
        const int future = Schema::latestVersion() + 5;
        {
            RawConnection raw(scratch.dsn());
            Schema::migrate(raw.database(), raw.dialect());
            QVERIFY(raw.exec(QStringLiteral("UPDATE schema_version SET version = ?"), {future}));
        }
        SqlDatabase database;
        QSignalSpy connected(&database, &Database::connected);
        database.setDataSourceName(scratch.dsn());
        QVERIFY(!database.openConnection());
        QVERIFY(!database.isConnected());
        QCOMPARE(connected.count(), 0);
        QVERIFY2(database.lastErrorText().contains(QStringLiteral("version %1").arg(future)),
                 qPrintable(database.lastErrorText()));
        RawConnection raw(scratch.dsn());
        QCOMPARE(Schema::currentVersion(raw.database(), raw.dialect()), future);
    }

    void namesAreUniqueLookupsExactListsFiltered_data() { addBackendRows(); }
    void namesAreUniqueLookupsExactListsFiltered()
    {
        CONNECTED_SCRATCH_DATABASE(scratch, database);
        const Record created = database.createRecord(RecordKind::Part, QStringLiteral("Housing A"));
        QVERIFY(created.id() > 0);
        // Another kind may carry the same name.
        QVERIFY(database.createRecord(RecordKind::Process, QStringLiteral("Housing A")).id() > 0);

        const auto refused = [&](RecordKind kind, const QString &name, const QString &group,
                                 const QString &why) {
            try {
                database.createRecord(kind, name, group);
            } catch (const ProgramError &error) {
                return error.description().contains(why);
            }
            return false;
        };
        QVERIFY(refused(RecordKind::Part, QStringLiteral("Housing A"), {}, "already exists"));
        QVERIFY(refused(RecordKind::Part, QStringLiteral("HOUSING a"), {}, "already exists"));
        QVERIFY(refused(RecordKind::Part, QStringLiteral(" Housing B"), {}, "blanks"));
        QVERIFY(refused(RecordKind::Test, QStringLiteral("  "), {}, "needs a name"));
        QVERIFY(refused(RecordKind::Part, QStringLiteral("Housing C"), QStringLiteral("Nowhere"),
                        "no group"));
        QVERIFY(refused(RecordKind::Test, QStringLiteral("Energy"), QStringLiteral("Line 3"),
                        "no group"));
        QVERIFY(database.isConnected());

        for (const QString &name :
             {QStringLiteral("Housing A "), QStringLiteral("Housing"), QString()}) {
            Part part;
            part.setName(name);
            QVERIFY2(!part.load(database), qPrintable(name));
            QCOMPARE(part.id(), qint64(0));
        }
        // Names match in any case; the record keeps the spelling it was stored with.
        for (const QString &name : {QStringLiteral("Housing A"), QStringLiteral("housing a")}) {
            Part part;
            part.setName(name);
            QVERIFY(part.load(database));
            QCOMPARE(part.id(), created.id());
            QCOMPARE(part.name(), QStringLiteral("Housing A"));
            QCOMPARE(part.groupId(), qint64(0));
        }

        // Lists are filtered by a part of the name in any case.
        for (const char *name : {"horn_7", "Horn 7", "anvil 100%", "Booster"})
            database.createRecord(RecordKind::Test, QLatin1String(name));
        const auto names = [&](const QString &filter) {
            QStringList found;
            for (const Record &record : database.listRecords(RecordKind::Test, filter))
                found.append(record.name());
            return found;
        };
        QCOMPARE(names({}), QStringList({"anvil 100%", "Booster", "Horn 7", "horn_7"}));
        QCOMPARE(database.listRecords(RecordKind::Part).size(), 1);
        QCOMPARE(names(QStringLiteral("HORN")), QStringList({"Horn 7", "horn_7"}));
        // Pattern characters in a filter stand for themselves.
        QCOMPARE(names(QStringLiteral("_")), QStringList({"horn_7"}));
        QCOMPARE(names(QStringLiteral("0%")), QStringList({"anvil 100%"}));
        QCOMPARE(names(QStringLiteral("x")), QStringList());
    }

    void limitsCarryTheirFlagWord_data() { addBackendRows(); }
    void limitsCarryTheirFlagWord()
    {
        CONNECTED_SCRATCH_DATABASE(scratch, database);
        const Record part = database.createRecord(RecordKind::Part, QStringLiteral("Housing"));
        const Record energy = database.createRecord(RecordKind::Test, QStringLiteral("Energy"));
        const Record time = database.createRecord(RecordKind::Test, QStringLiteral("Weld Time"));
        const auto limitFor = [&](qint64 testId) {
            SpecLimit limit;
            limit.setPartId(part.id());
            limit.setTestId(testId);
            return limit;
        };
        const auto load = [&](qint64 testId) {
            SpecLimit limit = limitFor(testId);
            limit.load(database);
            return limit;
        };

        SpecLimit limit = limitFor(energy.id());
        limit.setUpperSpecLimit(812.5);
        limit.setLowerWarningLimit(-2.25);
        database.setSpecLimit(limit);
        QCOMPARE(limitsOf(load(energy.id())),
                 (QList<double>{SpecLimit::kUpperSpecLimit | SpecLimit::kLowerWarningLimit, 812.5,
                                0, 0, -2.25}));
        QCOMPARE(load(time.id()).limitFlags(), 0);

        // Setting again replaces the whole record.
        SpecLimit replacement = limitFor(energy.id());
        replacement.setLowerSpecLimit(1.0 / 3.0);
        replacement.setUpperWarningLimit(700);
        database.setSpecLimit(replacement);
        QCOMPARE(limitsOf(load(energy.id())),
                 (QList<double>{SpecLimit::kLowerSpecLimit | SpecLimit::kUpperWarningLimit, 0,
                                1.0 / 3.0, 700, 0}));

        SpecLimit inverted = replacement;
        inverted.setUpperSpecLimit(0.25);
        QVERIFY_THROWS_EXCEPTION(ProgramError, database.setSpecLimit(inverted));
        QCOMPARE(limitsOf(load(energy.id())), limitsOf(replacement));

        const QList<SpecLimit> listed = database.listSpecLimits();
        QCOMPARE(listed.size(), 1);
        QCOMPARE(listed.first().partName() + u'/' + listed.first().testName(), "Housing/Energy");
        QCOMPARE(limitsOf(listed.first()), limitsOf(replacement));

        QVERIFY(database.clearSpecLimit(part.id(), energy.id()));
        QVERIFY(!database.clearSpecLimit(part.id(), energy.id()));
        QCOMPARE(load(energy.id()).limitFlags(), 0);
        QVERIFY(database.listSpecLimits().isEmpty());
    }

    void subgroupStoredWhole_data() { addBackendRows(); }
    void subgroupStoredWhole()
    {
        CONNECTED_SCRATCH_DATABASE(scratch, database);
        const Subgroup first = periodSubgroup(QStringLiteral("Housing"), kPeriodEnd);
        const Subgroup second =
            periodSubgroup(QStringLiteral("Cover"), kPeriodEnd.addSecs(300).addMSecs(-250));
        const qint64 firstId = first.store(database);
        const qint64 secondId = second.store(database);

        QList<QStringList> stored;
        for (const StoredValue &row : database.subgroupValues({})) {
            stored.append(valueText(row.subgroupId, row.header, row.testItem, row.kind,
                                    {row.sampleNumber, row.value, row.text}));
        }
        QList<QStringList> expected;
        for (const auto &[id, subgroup] : {std::pair{firstId, &first}, {secondId, &second}}) {
            for (const TestItem &item : subgroup->testItems()) {
                for (const SubgroupValue &value : item.values)
                    expected.append(valueText(id, subgroup->header(), item.name, item.kind, value));
            }
        }
        QCOMPARE(stored, expected);

        // A period that ends exactly at the start of a report belongs to it.
        SubgroupFilter since;
        since.since = second.header().dateTime;
        QCOMPARE(database.subgroupValues(since).size(), second.storedValueCount());
        since.since = second.header().dateTime.addMSecs(1);
        QVERIFY(database.subgroupValues(since).isEmpty());
    }

    void failedSubgroupLeavesNothing_data()
    {
        QTest::addColumn<QString>("backend");
        QTest::addColumn<int>("failure");
        for (const char *backend : {"sqlite", "postgresql"}) {
            QTest::addRow("%s, bad sample number in the last item", backend)
                << QString::fromLatin1(backend) << 0;
            QTest::addRow("%s, bad item kind halfway", backend)
                << QString::fromLatin1(backend) << 1;
        }
    }
    void failedSubgroupLeavesNothing()
    {
        SCRATCH_DATABASE(scratch);
        QFETCH(int, failure);
        SqlDatabase database;
        QVERIFY(connectTo(database, scratch.dsn()));
        const Subgroup good = periodSubgroup(QStringLiteral("Housing"), kPeriodEnd);
        good.store(database);

        // Everything before the broken row reaches the database before it fails.
        Subgroup broken = periodSubgroup(QStringLiteral("Housing"), kPeriodEnd.addSecs(300));
        if (failure == 0) {
            broken.addValue(0, 1.0, QStringLiteral("Sample numbers start at 1"));
        } else {
            broken.AddTestItem(QStringLiteral("Unknown kind"), 3);
            broken.addValue(1, 1.0);
            broken.AddTestItem(QStringLiteral("After"), TestItem::kMeasuredValue);
            broken.addValue(1, 2.0);
        }
        try {
            broken.store(database);
            QFAIL("the broken subgroup was stored");
        } catch (const ProgramError &error) {
            QCOMPARE(error.number(), ProgramError::kProgramErrorNumber);
            QVERIFY2(error.source().contains(QLatin1String("SqlDatabase.storeSubgroup")),
                     qPrintable(error.source()));
        }

        RawConnection raw(scratch.dsn());
        QCOMPARE(raw.count(QStringLiteral("subgroups")), 1);
        QCOMPARE(raw.count(QStringLiteral("test_items")), int(good.testItems().size()));
        QCOMPARE(raw.count(QStringLiteral("sample_values")), int(good.storedValueCount()));

        // The connection is not left inside the failed transaction.
        const Subgroup next = periodSubgroup(QStringLiteral("Housing"), kPeriodEnd.addSecs(600));
        QVERIFY(next.store(database) > 0);
        QCOMPARE(database.subgroupValues({}).size(), 2 * good.storedValueCount());
    }

    void lostServerConnectionIsMadeAgain()
    {
        SCRATCH_DATABASE_ON(scratch, QStringLiteral("postgresql"));
        SqlDatabase database;
        QVERIFY(connectTo(database, scratch.dsn()));
        qint64 backendPid = 0;
        {
            QSqlQuery pid(QSqlDatabase::database(database.connectionName(), false));
            QVERIFY(pid.exec(QStringLiteral("SELECT pg_backend_pid()")) && pid.next());
            backendPid = pid.value(0).toLongLong();
        }
        RawConnection admin(scratch.dsn());
        QVERIFY(
            admin.scalar(QStringLiteral("SELECT pg_terminate_backend(?)"), {backendPid}).toBool());

        const Subgroup lost = periodSubgroup(QStringLiteral("Housing"), kPeriodEnd);
        QVERIFY_THROWS_EXCEPTION(ProgramError, lost.store(database));
        QVERIFY(!database.isConnected());
        const Subgroup resumed = periodSubgroup(QStringLiteral("Housing"), kPeriodEnd.addSecs(300));
        QVERIFY(resumed.store(database) > 0);
        QVERIFY(database.isConnected());
        QCOMPARE(admin.count(QStringLiteral("subgroups")), 1);
    }

    void serverPasswordFromPasswordFile()
    {
        SCRATCH_DATABASE_ON(scratch, QStringLiteral("postgresql"));
        const QByteArray password = qgetenv("PGPASSWORD");
        if (password.isEmpty())
            QSKIP("the test server asks for no password");
        DataSource source;
        QString error;
        QVERIFY(DataSource::parse(scratch.dsn(), source, error));

        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("pgpass"));
        const auto connectWith = [&](const QByteArray &filePassword) {
            QFile file(path);
            file.open(QIODevice::WriteOnly);
            file.write("# the test server\n" + source.host().toUtf8() + ":" +
                       QByteArray::number(source.port()) + ":*:" + source.user().toUtf8() + ":" +
                       filePassword + "\n");
            file.close();
            file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
            SqlDatabase database;
            database.setDataSourceName(scratch.dsn());
            return database.openConnection();
        };
        qunsetenv("PGPASSWORD");
        qputenv("PGPASSFILE", path.toLocal8Bit());
        const bool right = connectWith(password);
        const bool wrong = connectWith("not-" + password);
        qunsetenv("PGPASSFILE");
        qputenv("PGPASSWORD", password);
        QVERIFY(right);
        QVERIFY(!wrong);
    }

    void connectionFailures_data()
    {
        QTest::addColumn<QString>("dsn");
        QTest::newRow("empty") << QString();
        QTest::newRow("unsupported server") << QStringLiteral("mysql://db/quality");
        QTest::newRow("folder missing") << QStringLiteral("/nonexistent-corvane/spc/spc.db");
        QTest::newRow("server not listening") << QStringLiteral("postgresql://spc@127.0.0.1:1/q");
    }
    void connectionFailures()
    {
        QFETCH(QString, dsn);
        SqlDatabase database;
        QSignalSpy connected(&database, &Database::connected);
        database.setDataSourceName(dsn);
        QVERIFY(!database.openConnection());
        QVERIFY(!database.isConnected());
        QVERIFY(!database.lastErrorText().isEmpty());
        QCOMPARE(connected.count(), 0);
        Part part;
        part.setName(QStringLiteral("Housing"));
        QVERIFY_THROWS_EXCEPTION(ProgramError, part.load(database));
    }

    void dataSourceNames_data()
    {
        // What a name reads as: the SQLite file, the server's user@host:port/database, or
        // a refusal whose message holds the given words.
        QTest::addColumn<QString>("dsn");
        QTest::addColumn<QString>("reading");
        QTest::newRow("plain file") << "spc.db"
                                    << "file spc.db";
        QTest::newRow("drive letter") << "C:/Corvane/spc.db"
                                      << "file C:/Corvane/spc.db";
        QTest::newRow("sqlite prefix") << "sqlite:/tmp/line 3/spc.db"
                                       << "file /tmp/line 3/spc.db";
        QTest::newRow("server with user and port") << "postgresql://spc@db.plant.local:5433/quality"
                                                   << "server spc@db.plant.local:5433/quality";
        QTest::newRow("server without user and port")
            << "postgresql://db.plant.local/quality"
            << "server operator7@db.plant.local:5432/quality";
        QTest::newRow("IPv6 server") << "postgresql://[::1]:6000/q"
                                     << "server operator7@::1:6000/q";
        QTest::newRow("escaped names") << "postgresql://u%40x@h/q%20db"
                                       << "server u@x@h:5432/q db";
        QTest::newRow("empty") << ""
                               << "refused empty";
        QTest::newRow("sqlite without file") << "sqlite:"
                                             << "refused names no file";
        QTest::newRow("other server kind") << "mysql://h/db"
                                           << "refused unsupported";
        QTest::newRow("no host") << "postgresql:///db"
                                 << "refused no server";
        QTest::newRow("no database") << "postgresql://h"
                                     << "refused DATABASE";
        QTest::newRow("nested path") << "postgresql://h/a/b"
                                     << "refused DATABASE";
        QTest::newRow("password in name") << "postgresql://u:secret@h/db"
                                          << "refused password";
        QTest::newRow("port too large") << "postgresql://h:99999/db"
                                        << "refused not valid";
        QTest::newRow("parameters") << "postgresql://h/db?sslmode=require"
                                    << "refused parameters";
    }
    void dataSourceNames()
    {
        QFETCH(QString, dsn);
        QFETCH(QString, reading);
        const auto user = scopedEnvironment("PGUSER", "operator7");
        DataSource source;
        QString error;
        if (!DataSource::parse(dsn, source, error)) {
            QVERIFY2(reading.startsWith(QLatin1String("refused ")), qPrintable(error));
            QVERIFY2(error.contains(reading.mid(8)), qPrintable(error));
            // The password must not be repeated in a message that may end up in a log.
            QVERIFY(!error.contains(QLatin1String("secret")));
        } else if (source.kind() == DataSource::Kind::SQLite) {
            QCOMPARE(QStringLiteral("file ") + source.filePath(), reading);
        } else {
            QCOMPARE(QStringLiteral("server %1@%2:%3/%4")
                         .arg(source.user(), source.host())
                         .arg(source.port())
                         .arg(source.database()),
                     reading);
        }
    }

    void passwordFileEntries_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("password");
        const QByteArray other = "db.plant.local:5432:quality:spc:other\n";
        QTest::newRow("exact entry")
            << QByteArray("127.0.0.1:5433:corvane:spc:s3cret\n") << "s3cret";
        QTest::newRow("wildcards") << QByteArray("*:*:*:spc:wild\n") << "wild";
        QTest::newRow("first match wins")
            << QByteArray("127.0.0.1:*:corvane:*:first\n*:*:*:*:second\n") << "first";
        QTest::newRow("other entries skipped") << other + "127.0.0.1:5433:*:spc:mine\n"
                                               << "mine";
        QTest::newRow("comment skipped")
            << QByteArray("# 127.0.0.1:5433:corvane:spc:commented\n*:5433:*:*:live\n") << "live";
        QTest::newRow("escaped colon and backslash")
            << QByteArray("*:*:*:spc:a\\:b\\\\c\n") << "a:b\\c";
        QTest::newRow("password ends at colon") << QByteArray("*:*:*:spc:abc:rest\n") << "abc";
        QTest::newRow("wrong port") << QByteArray("127.0.0.1:5432:corvane:spc:no\n") << "";
        QTest::newRow("user is a prefix") << QByteArray("*:*:*:sp:no\n") << "";
        QTest::newRow("star is literal when not alone") << QByteArray("*x:*:*:*:no\n") << "";
        QTest::newRow("empty password") << QByteArray("*:*:*:*:\n") << "";
    }

    void passwordFileEntries()
    {
        QFETCH(QByteArray, file);
        QTEST(PasswordFile::lookUpInText(QString::fromUtf8(file), QStringLiteral("127.0.0.1"), 5433,
                                         QStringLiteral("corvane"), QStringLiteral("spc")),
              "password");
    }

    void passwordSources()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("pgpass"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("127.0.0.1:5433:corvane:spc:fromfile\n");
        file.close();
        QVERIFY(file.setPermissions(kOwnerOnly));
        const auto passFile = scopedEnvironment("PGPASSFILE", path.toLocal8Bit());
        const auto resolve = [] {
            return PasswordFile::resolvePassword(QStringLiteral("127.0.0.1"), 5433,
                                                 QStringLiteral("corvane"), QStringLiteral("spc"));
        };
        {
            const auto password = scopedEnvironment("PGPASSWORD", "fromenvironment");
            QCOMPARE(resolve(), QStringLiteral("fromenvironment"));
        }
        {
            const auto password = scopedEnvironment("PGPASSWORD", QByteArray());
            QCOMPARE(PasswordFile::defaultPath(), path);
            QCOMPARE(resolve(), QStringLiteral("fromfile"));
            // A file that others may read is not trusted.
            QVERIFY(QFile::setPermissions(path, kOwnerOnly | QFile::ReadGroup | QFile::ReadOther));
#ifndef Q_OS_WIN
            QCOMPARE(resolve(), QString());
#endif
            QVERIFY(QFile::remove(path));
            QCOMPARE(resolve(), QString());
        }
    }
};

QTEST_GUILESS_MAIN(TestSpcDatabase)
#include "tst_spcdatabase.moc"

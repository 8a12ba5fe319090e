#include "ManualClock.h"
#include "PostgresServer.h"
#include "RecordingErrorReport.h"
#include "RecordingMessageBoxes.h"
#include "SmallDisk.h"

#include "outbox/OutboxForwarder.h"
#include "outbox/SubgroupOutbox.h"
#include "platform/EventLog.h"
#include "platform/ProgramFiles.h"
#include "platform/qlxLanguage.h"
#include "platform/spc/SqlDatabase.h"
#include "protocol/CorvaneFUN26.h"
#include "sampling/DatabaseSupport.h"
#include "sampling/SamplingProperties.h"
#include "stats/DatasetCollection.h"

#include <QTest>

#include <functional>

// Sampling against an SPC database that is away at the start and goes away for three
// periods in the middle of a run: every period reaches the database exactly once, in
// the order of the periods, also when the answer to a commit was lost.
class TestSamplingOutbox : public QObject
{
    Q_OBJECT

private slots:
    void everyPeriodStoredOnceInOrder_data()
    {
        QTest::addColumn<bool>("server");
        QTest::newRow("PostgreSQL server stopped") << true;
        QTest::newRow("SQLite folder missing, then full") << false;
    }

    void everyPeriodStoredOnceInOrder()
    {
        QFETCH(bool, server);
        QTemporaryDir folder;
        PostgresServer postgres;
        const QString plant = folder.filePath(QStringLiteral("plant"));
        QString dsn = plant + QStringLiteral("/spc.db");
        std::function<bool()> up;
        std::function<bool()> down;
        bool mounted = false;
        if (server) {
            if (!postgres.create())
                QSKIP("no PostgreSQL server can be made here");
            dsn = postgres.dsn();
            up = [&] { return postgres.start(); };
            down = [&] { return postgres.stop(); };
        } else {
            // The folder of the database file is a disk that is not mounted yet, and
            // later one that is full.
            const QString filler = plant + QStringLiteral("/filler");
            up = [&, filler] {
                return mounted ? QFile::remove(filler) : (mounted = SmallDisk::mount(plant, "1m"));
            };
            down = [filler] { return SmallDisk::fill(filler); };
        }
        const auto unmount = qScopeGuard([&] {
            if (mounted)
                SmallDisk::unmount(plant);
        });

        ManualClock clock(QDateTime(QDate(2026, 3, 2), QTime(6, 0)));
        RecordingErrorReport errors;
        RecordingMessageBoxes boxes;
        DatabaseSupport support(errors, ProgramFiles(folder.path()));
        EventLog events(folder.filePath(QStringLiteral("events.log")), clock);
        SubgroupOutbox outbox(folder.filePath(QStringLiteral("corvane-monitor.outbox")));
        SamplingProperties sampling(SamplingServices{
            errors, clock, support, boxes, folder.path(), {}, nullptr, &outbox, &events});
        sampling.setEnabled(true);
        sampling.setPart(QStringLiteral("Housing"));
        sampling.setProcess(QStringLiteral("Seal weld"));
        sampling.setSamplingPeriod(60);
        sampling.setDataSourceName(dsn);
        const qlxLanguage language;
        const DatasetCollection datasets;
        QList<bool> queued;
        connect(&sampling, &SamplingProperties::subgroupCompleted, this,
                [&](const qlaDatabase6::Subgroup &, bool wasQueued) { queued << wasQueued; });
        // One period of `welds` welds (none: the schedule only moves on).
        const auto period = [&](int welds) {
            for (int weld = 0; weld < welds; ++weld)
                sampling.AddToSample(language, CorvaneFUN26{});
            clock.advanceSeconds(60);
            sampling.ProcessSamplePeriod(language, datasets);
        };

        QVERIFY(sampling.StartCollection(language));
        period(1);
        period(2);
        QCOMPARE(sampling.backlog(), 2);
        QVERIFY(up());
        for (int quiet = 0; quiet < 6; ++quiet)
            period(0);
        QCOMPARE(sampling.backlog(), 0);
        period(3);
        QVERIFY(down());
        period(4);
        period(5);
        period(6);
        QCOMPARE(sampling.backlog(), 3);
        QVERIFY(up());
        // The first of them was committed, but the answer never came back.
        qlaDatabase6::SqlDatabase other;
        other.setDataSourceName(dsn);
        QVERIFY2(other.openConnection(), qPrintable(other.lastErrorText()));
        qlaDatabase6::Subgroup committed = outbox.entries().constFirst().subgroup;
        storeSubgroup(other, committed);
        for (int quiet = 0; quiet < 6; ++quiet)
            period(0);
        QCOMPARE(sampling.backlog(), 0);
        QCOMPARE(queued, QList<bool>({true, true, false, true, true, true}));

        QList<qint32> stored;
        QList<QDateTime> times;
        for (const qlaDatabase6::StoredValue &value : other.subgroupValues({})) {
            if (times.isEmpty() || times.constLast() != value.header.dateTime) {
                times << value.header.dateTime;
                stored << value.header.valueCount;
                QCOMPARE(value.header.partGroup, QStringLiteral("Corvane"));
            }
        }
        QCOMPARE(stored, QList<qint32>({1, 2, 3, 4, 5, 6}));
        QVERIFY(std::is_sorted(times.cbegin(), times.cend()));
        QFile log(events.path());
        QVERIFY(log.open(QIODevice::ReadOnly));
        const QByteArray lines = log.readAll();
        QCOMPARE(lines.count("\tSPC Database Away\t"), 2);
        QCOMPARE(lines.count("\tSPC Backlog Forwarded\t3\t"), 1);
        for (const RecordingErrorReport::Report &report : errors.reports)
            QFAIL(qPrintable(report.description));

        // A database file deleted under the running monitor is made again, rather than
        // the next periods going into the removed file.
        if (!server) {
            QVERIFY(QFile::remove(dsn));
            period(7);
            QCOMPARE(queued.constLast(), false);
            QVERIFY(QFile::exists(dsn));
        }
    }
};

QTEST_GUILESS_MAIN(TestSamplingOutbox)
#include "tst_samplingoutbox.moc"

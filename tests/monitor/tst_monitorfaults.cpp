#include "MonitorFixture.h"
#include "SampleWelds.h"
#include "SmallDisk.h"
#include "TestSuites.h"

#include "monitor/DataLog.h"

#include <QTest>

// A monitor given settings that cannot work, and a data log on a disk that fills up.
class TestMonitorFaults : public QObject
{
    Q_OBJECT

private slots:
    void unusableAddressIsRefusedAndSaysSo_data()
    {
        QTest::addColumn<QString>("address");
        QTest::addColumn<bool>("refusePort");
        QTest::newRow("no port") << "IP:127.0.0.1" << false;
        QTest::newRow("no host") << "IP::1000" << false;
        QTest::newRow("port 0") << "IP:127.0.0.1:0" << false;
        QTest::newRow("port not a number") << "IP:127.0.0.1:x1" << false;
        QTest::newRow("unknown kind") << "XYZ:foo" << false;
        QTest::newRow("empty") << "" << false;
        QTest::newRow("bad parity") << "COM:3,9600,Q,8,1,0" << false;
        QTest::newRow("port that will not open") << "COM:/etc/hostname,9600,N,8,1,0" << true;
    }

    void unusableAddressIsRefusedAndSaysSo()
    {
        QFETCH(QString, address);
        QFETCH(bool, refusePort);
        MonitorFixture fixture;
        fixture.refuseSerialPort = refusePort;
        fixture.configure(address);
        fixture.monitor->StartStop();
        QCOMPARE(fixture.monitor->DriverState(), 1);
        QCOMPARE(fixture.monitor->connectionLabel(), QStringLiteral("Invalid Port Number"));
        QCOMPARE(fixture.messages.messages.size(), 1);
        const QStringList events = fixture.eventLogLines();
        QCOMPARE(events.size(), 1);
        QVERIFY2(events.first().contains(QStringLiteral("\tLine 4 (%1)").arg(address)),
                 qPrintable(events.first()));
        // Nothing is retried behind the engineer's back.
        const qsizetype attempts = fixture.serial ? fixture.serial->opened.size() : 0;
        fixture.clock.advanceSeconds(3600);
        fixture.monitor->Timer1_Timer();
        QCOMPARE(fixture.serial ? fixture.serial->opened.size() : 0, attempts);
        QCOMPARE(fixture.monitor->DriverState(), 1);
    }

#ifdef Q_OS_UNIX
    // A line the disk refuses costs one event line that names the failure and the file;
    // the welds are counted all the same.
    void refusedLineIsADataLogWriteEvent()
    {
        MonitorFixture fixture;
        fixture.configure();
        fixture.monitor->setDataLogging(true, QStringLiteral("/dev/full"));
        fixture.feed(SampleWelds::stream(2));
        QCOMPARE(fixture.monitor->totalWelds(), 2);
        const QStringList events = fixture.eventLogLines();
        QCOMPARE(events.size(), 2);
        QCOMPARE(events.first().section(u'\t', 1, 2), QStringLiteral("Main\tData Log Write"));
        QCOMPARE(events.first().section(u'\t', -1), QStringLiteral("/dev/full"));
        QVERIFY(fixture.errors.isEmpty());
    }
#endif

    // Welds go on arriving while the disk is full: those that cannot be written are lost,
    // but no line is cut and none glued onto another.
    void dataLogLinesStayWholeOnAFullDisk()
    {
        MonitorFixture fixture;
        const QString disk = fixture.folder.filePath(QStringLiteral("disk"));
        if (!SmallDisk::mount(disk, "32k"))
            QSKIP("a small tmpfs cannot be mounted here (needs root)");
        const auto unmount = qScopeGuard([&] { SmallDisk::unmount(disk); });
        QFile filler(disk + QStringLiteral("/filler"));
        QVERIFY(filler.open(QIODevice::WriteOnly));
        filler.write(QByteArray(12 * 1024, 'x'));
        filler.close();

        DataLog log(fixture.eventLog, fixture.errors);
        const QString path = disk + QStringLiteral("/welds.txt");
        QStringList fields;
        for (int i = 0; i < 39; ++i)
            fields << QStringLiteral("field%1-%2").arg(i).arg(QString(i % 7, u'9'));
        int written = 0;
        int refused = 0;
        for (int weld = 0; weld < 200; ++weld)
            log.AppendFile(path, fields.join(u'\t')) ? ++written : ++refused;
        QVERIFY(refused > 0);
        QVERIFY(filler.remove());
        QVERIFY(log.AppendFile(path, fields.join(u'\t')));

        const QStringList lines = crlfLines(path);
        QCOMPARE(lines.size(), written + 1);
        for (const QString &line : lines)
            QCOMPARE(line.split(u'\t').size(), 39);
        QVERIFY(fixture.eventLogLines().first().contains(QStringLiteral("Data Log Write")));
    }
};

CORVANE_TEST_SUITE(TestMonitorFaults)
#include "tst_monitorfaults.moc"

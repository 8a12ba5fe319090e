// The equipment link's state tables and reconnect rules, on fake ports and a clock that
// the test moves by hand: five-minute silences pass in microseconds.

#include "MonitorFixture.h"
#include "SampleWelds.h"
#include "TestSuites.h"

#include "platform/ProgramError.h"
#include "platform/SerialAddress.h"

#include <QSignalSpy>
#include <QTest>

namespace {

const QString kTcp = QStringLiteral("IP:192.0.2.5:3001");
const QString kSerial = QStringLiteral("COM:/dev/ttyS9,19200,E,7,2,2");

QDateTime at(int hour, int minute, int second = 0)
{
    return QDateTime(QDate(2026, 11, 14), QTime(hour, minute, second));
}

// The monitor started on the given link.
void start(MonitorFixture &f, const QString &address = kTcp)
{
    f.configure(address);
    f.monitor->StartStop();
}

// The timer ticks at the given time.
void tickAt(MonitorFixture &f, const QDateTime &time)
{
    f.clock.set(time);
    f.monitor->Timer1_Timer();
}

// A monitor whose TCP link is connected and has received one weld at 10:00:30.
void connectAndWeld(MonitorFixture &f)
{
    f.clock.set(at(10, 0));
    start(f);
    QVERIFY(f.socket);
    f.socket->accept();
    QCOMPARE(f.monitor->DriverState(), 3);
    f.clock.set(at(10, 0, 30));
    f.socket->deliver(SampleWelds::stream(1));
    QCOMPARE(f.monitor->totalWelds(), 1);
}

} // namespace

class tst_MonitorLink : public QObject
{
    Q_OBJECT

private slots:
    void silentTcpLinkReconnectsAtMostOncePerMinute()
    {
        MonitorFixture f;
        connectAndWeld(f);
        QCOMPARE(f.socket->connects.size(), 1);
        QCOMPARE(f.socket->connects.first(), qMakePair(QStringLiteral("192.0.2.5"), quint16(3001)));

        // Five whole minutes of silence are not yet more than five.
        for (int second = 0; second < 60; second += 10)
            tickAt(f, at(10, 5, second));
        QCOMPARE(f.socket->connects.size(), 1);

        tickAt(f, at(10, 6, 0));
        QCOMPARE(f.socket->connects.size(), 2);
        QCOMPARE(f.monitor->DriverState(), 2);
        QCOMPARE(f.monitor->startStopCaption(), QStringLiteral("&Stop"));

        // Connected again but still silent: the next attempt waits for more than a minute.
        f.socket->accept();
        for (int second = 0; second < 60; second += 5)
            tickAt(f, at(10, 7, second));
        QCOMPARE(f.socket->connects.size(), 2);
        tickAt(f, at(10, 8, 0));
        QCOMPARE(f.socket->connects.size(), 3);

        // A weld resets the silence.
        f.socket->accept();
        f.clock.set(at(10, 9, 0));
        f.socket->deliver(SampleWelds::stream(1));
        tickAt(f, at(10, 14, 59));
        QCOMPARE(f.socket->connects.size(), 3);
    }

    // Without a weld in this run the empty last weld time is long ago, so only the retry
    // minute counts, for a connected link as for a connect that never completes.
    void linkWithoutWeldRetriedAfterAMinute_data()
    {
        QTest::addColumn<bool>("accepted");
        QTest::newRow("connected") << true;
        QTest::newRow("stuck connect") << false;
    }
    void linkWithoutWeldRetriedAfterAMinute()
    {
        QFETCH(bool, accepted);
        MonitorFixture f;
        f.clock.set(at(10, 0, 40));
        start(f);
        if (accepted)
            f.socket->accept();
        tickAt(f, at(10, 1, 59));
        QCOMPARE(f.socket->connects.size(), 1);
        tickAt(f, at(10, 2, 0));
        QCOMPARE(f.socket->connects.size(), 2);
        QCOMPARE(f.monitor->lastWeldTime(), QDateTime());
    }

    void brokenAndClosingSockets()
    {
        MonitorFixture f;
        connectAndWeld(f);

        // The power supply closed the connection: reconnect at the next tick.
        f.socket->setState(SocketPort::Closing);
        f.monitor->Timer1_Timer();
        QCOMPARE(f.socket->connects.size(), 2);
        // Closing while a connect is only requested is left to the connect retry.
        f.socket->setState(SocketPort::Closing);
        f.monitor->Timer1_Timer();
        QCOMPARE(f.socket->connects.size(), 2);

        // An error reconnects at once, whatever the link state.
        f.socket->setState(SocketPort::Error);
        f.monitor->Timer1_Timer();
        QCOMPARE(f.socket->connects.size(), 3);
        f.monitor->StopDataCollection();
        QCOMPARE(f.monitor->DriverState(), 1);
        f.socket->setState(SocketPort::Error);
        f.monitor->Timer1_Timer();
        QCOMPARE(f.socket->connects.size(), 4);
        QVERIFY(f.errors.isEmpty());
    }

    void labelAndProblemIndicator_data()
    {
        QTest::addColumn<int>("state");
        QTest::addColumn<QString>("label");
        QTest::addColumn<int>("problem"); // 0 off, 1 on, -1 unchanged
        QTest::newRow("closed") << 0 << "Closed" << 0;
        QTest::newRow("pending") << 3 << "Connection Pending..." << 1;
        QTest::newRow("connected") << 7 << "Connected" << 0;
        QTest::newRow("unknown") << 12 << "Unknown: 12" << -1;
    }

    void labelAndProblemIndicator()
    {
        QFETCH(int, state);
        QFETCH(QString, label);
        QFETCH(int, problem);
        for (const bool before : {false, true}) {
            MonitorFixture f;
            start(f);
            f.socket->setState(before ? SocketPort::Connecting : SocketPort::Connected);
            f.monitor->Timer1_Timer();
            QCOMPARE(f.monitor->connectionProblem(), before);

            f.socket->setState(state);
            f.monitor->Timer1_Timer();
            QCOMPARE(f.monitor->connectionLabel(), label);
            QCOMPARE(f.monitor->GetSocketState(), label);
            QCOMPARE(f.monitor->connectionProblem(), problem < 0 ? before : problem == 1);
        }
    }

    // A running collection stops whatever its socket is doing; a closed one is not
    // closed again.
    void startStopBySocketState_data()
    {
        QTest::addColumn<int>("state");
        QTest::addColumn<int>("closes");
        QTest::newRow("closed") << 0 << 0;
        QTest::newRow("resolving") << 4 << 1;
        QTest::newRow("closing") << 8 << 1;
    }

    void startStopBySocketState()
    {
        QFETCH(int, state);
        QFETCH(int, closes);
        MonitorFixture f;
        start(f);
        f.socket->accept();
        f.socket->setState(state);
        const int closesBefore = f.socket->closes;
        f.monitor->StartStop();
        QCOMPARE(f.socket->connects.size(), 1);
        QCOMPARE(f.socket->closes - closesBefore, closes);
        QCOMPARE(f.monitor->DriverState(), 1);
        QCOMPARE(f.monitor->startStopCaption(), QStringLiteral("&Start"));
        QVERIFY(f.monitor->displayItemsEnabled());
    }

    void serialLinkOpensWithItsSettings()
    {
        MonitorFixture f;
        f.configure(kSerial);
        QSignalSpy labels(f.monitor.get(), &EquipmentMonitor::connectionLabelChanged);
        f.monitor->StartStop();
        QVERIFY(f.serial && f.serial->isOpen());
        QCOMPARE(f.serial->opened.size(), 1);
        QCOMPARE(SerialAddress::format(f.serial->opened.first()), kSerial);
        QCOMPARE(labels.first().first().toString(), QStringLiteral("Connecting..."));
        QCOMPARE(f.monitor->connectionLabel(), QStringLiteral("Connected"));
        QCOMPARE(f.monitor->startStopCaption(), QStringLiteral("&Stop"));
        QCOMPARE(f.monitor->DriverState(), 2);
        QCOMPARE(f.monitor->GetSocketState(), QStringLiteral("Opened"));

        f.serial->deliver(SampleWelds::stream(2).first(130));
        f.serial->deliver(SampleWelds::stream(2).sliced(130));
        QCOMPARE(f.monitor->totalWelds(), 2);

        // A silent serial link is left alone however long it stays silent.
        f.clock.advanceSeconds(3 * 3600);
        f.monitor->Timer1_Timer();
        QCOMPARE(f.serial->opened.size(), 1);
        QCOMPARE(f.serial->closes, 0);
        QVERIFY(!f.monitor->connectionProblem());

        f.monitor->StartStop();
        QVERIFY(!f.serial->isOpen());
        QCOMPARE(f.monitor->startStopCaption(), QStringLiteral("&Start"));
        QCOMPARE(f.monitor->GetSocketState(), QStringLiteral("Closed"));
    }

    void socketErrorGoesToTheEventLog()
    {
        MonitorFixture f;
        start(f);
        emit f.socket->errorOccurred(10061, QStringLiteral("Connection refused"), 111);
        emit f.socket->errorOccurred(10060, QStringLiteral("Timed\tout"), -3);
        const QStringList lines = f.eventLogLines();
        QCOMPARE(lines.size(), 2);
        QCOMPARE(lines.at(0).section(u'\t', 1),
                 QStringLiteral("Line 4 (IP:192.0.2.5:3001)\tWinSockError\t10061\tConnection "
                                "refused\tSCODE: 111"));
        QCOMPARE(lines.at(1).section(u'\t', 1),
                 QStringLiteral(
                     "Line 4 (IP:192.0.2.5:3001)\tWinSockError\t10060\tTimed\tout\tSCODE: -3"));
    }

    void repeatedFailureIsWrittenOnceThenEveryTenMinutes()
    {
        MonitorFixture f;
        f.configure(kTcp);
        f.monitor->setEquipment(QStringLiteral("Press 7"), kTcp);
        f.clock.set(at(10, 0));
        f.monitor->StartStop();
        for (int attempt = 0; attempt < 300; ++attempt) {
            f.clock.advanceSeconds(2);
            emit f.socket->errorOccurred(10061, QStringLiteral("Connection refused"), 10061);
        }
        QCOMPARE(f.eventLogLines().size(), 1);
        f.clock.advanceSeconds(2);
        emit f.socket->errorOccurred(10061, QStringLiteral("Connection refused"), 10061);
        f.socket->accept();
        const QStringList lines = f.eventLogLines();
        QCOMPARE(lines.size(), 3);
        QVERIFY(lines.at(1).endsWith(QStringLiteral("SCODE: 10061 (repeated 300 times since the "
                                                    "last line)")));
        QCOMPARE(lines.at(2).section(u'\t', 1, 2),
                 QStringLiteral("Press 7 (%1)\tLink Restored").arg(kTcp));
        QVERIFY(lines.at(2).contains(QStringLiteral("after 301 failed attempt(s)")));
        // Another failure after the link was back is news again.
        emit f.socket->errorOccurred(10061, QStringLiteral("Connection refused"), 10061);
        QCOMPARE(f.eventLogLines().size(), 4);
    }

    void pulledSerialAdapterIsShownAndReopened()
    {
        MonitorFixture f;
        f.clock.set(at(10, 0));
        start(f, kSerial);
        QVERIFY(f.serial->isOpen());
        f.serial->pull();
        QCOMPARE(f.monitor->connectionLabel(), QStringLiteral("Closed"));
        QVERIFY(f.monitor->connectionProblem());
        QCOMPARE(f.monitor->startStopCaption(), QStringLiteral("&Stop"));
        QVERIFY(f.eventLogLines().last().contains(QStringLiteral("\tSerial Port Lost\t")));

        // The device is still away: retried every few seconds, never given up.
        f.serial->refuse = true;
        const qsizetype before = f.serial->opened.size();
        for (int second = 1; second <= 20; ++second)
            tickAt(f, at(10, 0, second));
        QVERIFY(f.serial->opened.size() - before >= 5);
        QCOMPARE(f.monitor->DriverState(), 2);

        f.serial->refuse = false;
        tickAt(f, at(10, 0, 24));
        QVERIFY(f.serial->isOpen());
        QCOMPARE(f.monitor->connectionLabel(), QStringLiteral("Connected"));
        QVERIFY(f.eventLogLines().last().contains(QStringLiteral("\tLink Restored\t")));
        f.serial->deliver(SampleWelds::stream(1));
        QCOMPARE(f.monitor->totalWelds(), 1);

        // A press of Stop while the adapter is away stops; it does not start afresh.
        f.serial->pull();
        f.monitor->StartStop();
        QCOMPARE(f.monitor->startStopCaption(), QStringLiteral("&Start"));
        QCOMPARE(f.monitor->totalWelds(), 1);
    }

    void timerRunsFromInitialize()
    {
        MonitorFixture f;
        f.monitor->setEquipment(QStringLiteral("Line 4"), kTcp);
        f.monitor->StartDataCollection();
        QVERIFY(!f.monitor->timerActive());
        f.monitor->Initialize(f.language, 2);
        QVERIFY(f.monitor->timerActive());
        f.socket->setState(SocketPort::Error);
        // The 100 ms timer sees the broken socket and reconnects by itself.
        QTRY_COMPARE_WITH_TIMEOUT(f.socket->connects.size(), 2, 2000);
    }

    void lifecycle()
    {
        MonitorFixture a;
        MonitorFixture b;
        QVERIFY(!a.monitor->identifier().isEmpty());
        QVERIFY(a.monitor->identifier() != b.monitor->identifier());

        a.configure(kTcp);
        a.monitor->setRowSelection(0, 3);
        a.monitor->setRowSelection(5, 8);
        a.monitor->StartStop();
        a.socket->accept();
        a.socket->deliver(SampleWelds::stream(3));
        QVERIFY(a.monitor->totalAlarms() > 0);
        QVERIFY(!a.monitor->displayItemsEnabled());
        QVERIFY(a.monitor->datasets().Item(QStringLiteral("KEY:3")).SampleEnabled);
        QVERIFY(!a.monitor->datasets().Item(QStringLiteral("KEY:4")).SampleEnabled);

        QVERIFY(a.monitor->ShutDown());
        QCOMPARE(a.monitor->DriverState(), 0);
        QCOMPARE(a.monitor->rowSelection(0), 0);
        QCOMPARE(a.monitor->rowSelection(5), 0);
        QCOMPARE(a.monitor->alarmsText(), QString());
        QVERIFY(a.monitor->displayItemsEnabled());
        QVERIFY(!a.monitor->timerActive());
    }

    void runTimeText()
    {
        QCOMPARE(EquipmentMonitor::GetRunTimeText(3661), QStringLiteral("01:01:01"));
        MonitorFixture f;
        f.clock.set(at(8, 0));
        start(f);
        f.clock.set(at(8, 0).addSecs(25 * 3600));
        f.socket->deliver(SampleWelds::stream(1));
        f.clock.advanceSeconds(600); // the run time stands still between welds
        QCOMPARE(EquipmentMonitor::GetRunTimeText(f.monitor->elapsedSeconds()),
                 QStringLiteral("25:00:00"));
    }
};

CORVANE_TEST_SUITE(tst_MonitorLink)
#include "tst_monitorlink.moc"

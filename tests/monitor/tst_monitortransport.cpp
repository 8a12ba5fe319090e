// The monitor on real transports: a TCP server on the loopback interface playing the
// power supply, and a pseudo-terminal standing in for the serial cable.

#include "MonitorFixture.h"
#include "SampleWelds.h"
#include "TestSuites.h"
#ifdef Q_OS_UNIX
#include "PseudoTerminal.h"
#endif

#include "monitor/EquipmentMonitor.h"
#include "platform/EventLog.h"
#include "platform/QtSerialPort.h"
#include "platform/RegionalFormat.h"
#include "platform/TcpSocketPort.h"
#include "protocol/Function26Frame.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

namespace {

// A monitor on the real ports, logging into a temporary folder.
struct RealMonitor
{
    RealMonitor()
        : eventLog(folder.filePath(QStringLiteral("events.log")), clock)
    {
        MonitorServices services{
            .errors = errors,
            .eventLog = eventLog,
            .clock = clock,
            .makeSocket = [] { return std::make_unique<TcpSocketPort>(); },
            .makeSerialPort = [] { return std::make_unique<QtSerialPort>(); },
        };
        monitor = std::make_unique<EquipmentMonitor>(std::move(services));
        monitor->Initialize(language, 0);
        monitor->setDataLogging(true, dataLogPath());
    }

    QString dataLogPath() const { return folder.filePath(QStringLiteral("welds.txt")); }
    QStringList dataLogLines() const { return crlfLines(dataLogPath()); }

    QTemporaryDir folder;
    ManualClock clock;
    RecordingErrorReport errors;
    EventLog eventLog;
    qlxLanguage language;
    std::unique_ptr<EquipmentMonitor> monitor;
};

// A power supply on 127.0.0.1 that accepts one connection at a time.
struct LoopbackSupply
{
    LoopbackSupply() { QVERIFY(server.listen(QHostAddress::LocalHost, 0)); }

    QString address() const
    {
        return QStringLiteral("IP:127.0.0.1:") + QString::number(server.serverPort());
    }
    bool accept()
    {
        // The monitor lives on this thread: keep its events and timer running meanwhile.
        QDeadlineTimer deadline(5000);
        while (!server.hasPendingConnections() && !deadline.hasExpired())
            QTest::qWait(10);
        peer = server.nextPendingConnection();
        return peer != nullptr;
    }
    void send(const QByteArray &bytes)
    {
        peer->write(bytes);
        peer->flush();
    }

    QTcpServer server;
    QPointer<QTcpSocket> peer;
};

QByteArray corrupted(const QByteArray &frame)
{
    QByteArray bytes = frame;
    bytes[bytes.size() - 2] = '\x11'; // the DLE of the end marker
    return bytes;
}

} // namespace

class tst_MonitorTransport : public QObject
{
    Q_OBJECT

private slots:
    void weldsOverLoopbackTcp()
    {
        LoopbackSupply supply;
        RealMonitor m;
        m.monitor->setEquipment(QStringLiteral("Horn"), supply.address());
        m.monitor->StartStop();
        QVERIFY(supply.accept());
        QTRY_COMPARE(m.monitor->DriverState(), 3);

        // Records cut into small pieces, a corrupted frame and garbage among them.
        const QByteArray stream =
            SampleWelds::stream(3) + QByteArray("\x10\x10garbage") +
            corrupted(Function26Frame::encode(SampleWelds::record(99), MeasurementSystem::Metric)) +
            SampleWelds::stream(4).sliced(3 * 125);
        for (qsizetype at = 0; at < stream.size(); at += 37) {
            supply.send(stream.mid(at, 37));
            QTest::qWait(1);
        }
        QTRY_COMPARE(m.monitor->totalWelds(), 4);
        QCOMPARE(m.errors.count(), 1);
        QCOMPARE(m.errors.last().location, QStringLiteral("CorvaneUsw.ProcessDataStream"));
        const QStringList lines = m.dataLogLines();
        QCOMPARE(lines.size(), 5);
        QCOMPARE(lines.first(), CorvaneFUN26::HeaderRecord(m.language));
        for (int cycle = 1; cycle <= 4; ++cycle)
            QCOMPARE(lines.at(cycle).section(u'\t', 1, 1), QString::number(cycle));

        m.monitor->StartStop();
        QCOMPARE(m.monitor->DriverState(), 1);
        QTRY_VERIFY(supply.peer->state() == QAbstractSocket::UnconnectedState);
    }

    void peerCloseIsReconnectedByTheTimer()
    {
        LoopbackSupply supply;
        RealMonitor m;
        m.monitor->setEquipment(QStringLiteral("Horn"), supply.address());
        m.monitor->StartStop();
        QVERIFY(supply.accept());
        QTRY_COMPARE(m.monitor->DriverState(), 3);
        supply.send(SampleWelds::stream(1));
        QTRY_COMPARE(m.monitor->totalWelds(), 1);

        // The power supply restarts: the 100 ms timer notices the closed connection.
        supply.peer->disconnectFromHost();
        QVERIFY(supply.accept());
        QTRY_COMPARE(m.monitor->DriverState(), 3);
        supply.send(SampleWelds::stream(2).sliced(125));
        QTRY_COMPARE(m.monitor->totalWelds(), 2);
        QVERIFY(m.errors.isEmpty());
    }

    void refusedConnectionGoesToTheEventLog()
    {
        quint16 closedPort = 0;
        {
            QTcpServer probe;
            QVERIFY(probe.listen(QHostAddress::LocalHost, 0));
            closedPort = probe.serverPort();
        }
        RealMonitor m;
        m.monitor->setEquipment(QStringLiteral("Horn"),
                                QStringLiteral("IP:127.0.0.1:") + QString::number(closedPort));
        m.monitor->StartStop();
        QTRY_VERIFY(QFile::exists(m.eventLog.path()));
        QFile log(m.eventLog.path());
        QVERIFY(log.open(QIODevice::ReadOnly));
        const QStringList fields = QString::fromUtf8(log.readLine()).trimmed().split(u'\t');
        QCOMPARE(fields.size(), 6);
        QCOMPARE(fields.at(1), QStringLiteral("Horn (IP:127.0.0.1:%1)").arg(closedPort));
        QCOMPARE(fields.at(2), QStringLiteral("WinSockError"));
        QCOMPARE(fields.at(3), QStringLiteral("10061"));
        QCOMPARE(fields.at(5), QStringLiteral("SCODE: 10061"));
        QTRY_COMPARE(m.monitor->connectionLabel(), QStringLiteral("Connecting..."));
    }

#ifdef Q_OS_UNIX
    // Serial reads need a real device; wine delivers none, so Windows tests the link
    // over TCP only.
    void weldsOverAPseudoTerminal()
    {
        PseudoTerminal cable;
        QVERIFY2(cable.isValid(), qPrintable(cable.errorText()));
        RealMonitor m;
        m.monitor->setEquipment(QStringLiteral("Press 2"), QStringLiteral("COM:") +
                                                               cable.slavePath() +
                                                               QStringLiteral(",19200,N,8,1,0"));
        m.monitor->StartStop();
        QCOMPARE(m.monitor->connectionLabel(), QStringLiteral("Connected"));
        QCOMPARE(m.monitor->GetSocketState(), QStringLiteral("Opened"));

        const QByteArray stream = QByteArray("line noise") + SampleWelds::stream(5);
        for (qsizetype at = 0; at < stream.size(); at += 50) {
            QVERIFY(cable.write(stream.mid(at, 50)));
            QTest::qWait(1);
        }
        QTRY_COMPARE(m.monitor->totalWelds(), 5);
        QCOMPARE(m.dataLogLines().size(), 6);
        QVERIFY(m.errors.isEmpty());

        m.monitor->StartStop();
        QCOMPARE(m.monitor->GetSocketState(), QStringLiteral("Closed"));
        QCOMPARE(m.monitor->startStopCaption(), QStringLiteral("&Start"));
    }
#endif
};

CORVANE_TEST_SUITE(tst_MonitorTransport)
#include "tst_monitortransport.moc"

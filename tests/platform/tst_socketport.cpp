#include "platform/TcpSocketPort.h"

#include <QPointer>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

namespace {

constexpr int kWaitMs = 5000;

// A port on the loopback interface where nobody listens: a server is opened there and
// closed again, so the port is free and a connect is refused.
quint16 refusingPort()
{
    QTcpServer server;
    if (!server.listen(QHostAddress::LocalHost, 0))
        return 0;
    const quint16 port = server.serverPort();
    server.close();
    return port;
}

} // namespace

// The TCP link against a real server on the loopback interface: the classic state
// numbers through a connection's life, the arrival of data, a peer that hangs up, and
// failures that hold state 9 until the next attempt starts over.
class TestSocketPort : public QObject
{
    Q_OBJECT

private slots:
    void init() { QVERIFY(m_server.listen(QHostAddress::LocalHost, 0)); }

    void cleanup()
    {
        delete m_peer;
        m_server.close();
    }

    void connectPassesThroughTheClassicStates()
    {
        TcpSocketPort port;
        QCOMPARE(port.state(), int(SocketPort::Closed));
        QSignalSpy connected(&port, &SocketPort::connected);
        QList<int> seen;
        connect(&port, &SocketPort::connected, this, [&] { seen.append(port.state()); });

        port.connectToHost(QStringLiteral("127.0.0.1"), m_server.serverPort());
        QVERIFY(port.state() == SocketPort::ResolvingHost ||
                port.state() == SocketPort::Connecting);

        QVERIFY(connected.wait(kWaitMs));
        QCOMPARE(seen, QList<int>{SocketPort::Connected});
        QCOMPARE(port.state(), int(SocketPort::Connected));

        port.close();
        QCOMPARE(port.state(), int(SocketPort::Closed));
    }

    void dataArrivesInPiecesAndNothingIsLost()
    {
        TcpSocketPort port;
        QVERIFY(acceptFrom(port));
        QSignalSpy arrivals(&port, &SocketPort::dataArrival);

        // Pieces that cut a frame anywhere, with every byte value, DLE and ETX included.
        QByteArray all;
        for (int i = 0; i < 600; ++i)
            all.append(char(i * 7 % 256));
        const QList<qsizetype> cuts = {1, 123, 124, 2, 350};
        QByteArray received;
        qsizetype at = 0;
        for (qsizetype length : cuts) {
            m_peer->write(all.mid(at, length));
            at += length;
            QVERIFY(arrivals.wait(kWaitMs));
            received += port.readAll();
            QTRY_COMPARE_WITH_TIMEOUT(received.size(), at, kWaitMs);
        }
        QCOMPARE(received, all.first(at));
    }

    void peerCloseIsReportedAndHoldsClosingUntilClose()
    {
        TcpSocketPort port;
        QVERIFY(acceptFrom(port));
        QSignalSpy closed(&port, &SocketPort::closed);
        QSignalSpy arrivals(&port, &SocketPort::dataArrival);

        // The last weld before the power supply hangs up must still be readable.
        m_peer->write("last weld");
        m_peer->disconnectFromHost();
        QVERIFY(closed.wait(kWaitMs));
        QCOMPARE(port.readAll(), QByteArray("last weld"));
        QCOMPARE(port.state(), int(SocketPort::Closing));

        port.close();
        QCOMPARE(port.state(), int(SocketPort::Closed));
    }

    void refusedConnectionHoldsErrorUntilTheNextAttempt()
    {
        const quint16 nobody = refusingPort();
        QVERIFY(nobody != 0);
        TcpSocketPort port;
        port.setMinimumAttemptTime(0);
        QSignalSpy errors(&port, &SocketPort::errorOccurred);
        QSignalSpy connected(&port, &SocketPort::connected);

        port.connectToHost(QStringLiteral("127.0.0.1"), nobody);
        // Without a minimum time the refusal may be reported before connectToHost returns.
        QTRY_COMPARE_WITH_TIMEOUT(errors.count(), 1, kWaitMs);
        QCOMPARE(errors.at(0).at(0).toInt(), 10061);
        QCOMPARE(errors.at(0).at(2).toInt(), 10061);
        QCOMPARE(port.state(), int(SocketPort::Error));

        // The next attempt starts over: no error state is carried into it.
        port.connectToHost(QStringLiteral("127.0.0.1"), m_server.serverPort());
        QVERIFY(connected.wait(kWaitMs));
        QCOMPARE(port.state(), int(SocketPort::Connected));
        QCOMPARE(errors.count(), 1);
    }

    void refusalIsHeldBackAsConnectingToPaceRetries()
    {
        // A shorter minimum than the program's two seconds keeps the case quick.
        constexpr int kMinimumMs = 600;
        TcpSocketPort port;
        port.setMinimumAttemptTime(kMinimumMs);
        QSignalSpy errors(&port, &SocketPort::errorOccurred);
        port.connectToHost(QStringLiteral("127.0.0.1"), refusingPort());
        // The loopback refuses at once; the port still shows an attempt in progress.
        QTest::qWait(300);
        QCOMPARE(port.state(), int(SocketPort::Connecting));
        QVERIFY(errors.isEmpty());
        QVERIFY(errors.wait(kWaitMs));
        QCOMPARE(port.state(), int(SocketPort::Error));
        port.close();
        QCOMPARE(port.state(), int(SocketPort::Closed));

        // Closing while a failure is held back drops it.
        port.connectToHost(QStringLiteral("127.0.0.1"), refusingPort());
        QTest::qWait(300);
        port.close();
        QVERIFY(!errors.wait(kMinimumMs + 500));
        QCOMPARE(port.state(), int(SocketPort::Closed));
    }

    void closeWhileConnectingStopsTheAttempt()
    {
        TcpSocketPort port;
        QSignalSpy connected(&port, &SocketPort::connected);
        QSignalSpy closed(&port, &SocketPort::closed);
        QSignalSpy errors(&port, &SocketPort::errorOccurred);

        port.connectToHost(QStringLiteral("127.0.0.1"), m_server.serverPort());
        port.close();
        QTest::qWait(100);
        QCOMPARE(port.state(), int(SocketPort::Closed));
        QVERIFY(connected.isEmpty());
        QVERIFY(closed.isEmpty());
        QVERIFY(errors.isEmpty());
    }

    void reconnectWhileConnectedDropsTheOldConnectionQuietly()
    {
        TcpSocketPort port;
        QVERIFY(acceptFrom(port));
        QPointer<QTcpSocket> first = m_peer;
        QSignalSpy closed(&port, &SocketPort::closed);
        QSignalSpy connected(&port, &SocketPort::connected);

        port.connectToHost(QStringLiteral("127.0.0.1"), m_server.serverPort());
        QVERIFY(connected.wait(kWaitMs));
        QVERIFY(closed.isEmpty());
        QVERIFY(m_server.hasPendingConnections() || m_server.waitForNewConnection(kWaitMs));
        QTcpSocket *second = m_server.nextPendingConnection();
        QByteArray got;
        connect(&port, &SocketPort::dataArrival, this, [&] { got += port.readAll(); });
        second->write("from the second");
        QTRY_COMPARE_WITH_TIMEOUT(got, QByteArray("from the second"), kWaitMs);
        delete second;
        if (first)
            QTRY_COMPARE_WITH_TIMEOUT(first->state(), QAbstractSocket::UnconnectedState, kWaitMs);
    }

    void unknownHostFailsWithTheClassicNumber()
    {
        TcpSocketPort port;
        port.setMinimumAttemptTime(0);
        QSignalSpy errors(&port, &SocketPort::errorOccurred);
        port.connectToHost(QStringLiteral("no-such-welder.invalid"), 1000);
        // The machine's resolver answers for the reserved .invalid domain; one that does
        // not answer at all leaves nothing to test here.
        if (!QTest::qWaitFor([&] { return !errors.isEmpty(); }, kWaitMs * 4))
            QSKIP("the name resolver did not answer");
        QCOMPARE(errors.at(0).at(2).toInt(), 11001);
        QCOMPARE(errors.at(0).at(0).toInt(), 11001);
        QCOMPARE(port.state(), int(SocketPort::Error));
        QCOMPARE(port.remoteHost(), QStringLiteral("no-such-welder.invalid"));
    }

private:
    // Connects the port and takes the server's end as the power supply's.
    bool acceptFrom(TcpSocketPort &port)
    {
        QSignalSpy connected(&port, &SocketPort::connected);
        port.connectToHost(QStringLiteral("127.0.0.1"), m_server.serverPort());
        if (!m_server.hasPendingConnections() && !m_server.waitForNewConnection(kWaitMs))
            return false;
        m_peer = m_server.nextPendingConnection();
        return m_peer && (connected.count() == 1 || connected.wait(kWaitMs));
    }

    QTcpServer m_server;
    QPointer<QTcpSocket> m_peer;
};

QTEST_GUILESS_MAIN(TestSocketPort)
#include "tst_socketport.moc"

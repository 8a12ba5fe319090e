#include "PseudoTerminal.h"

#include "platform/QtSerialPort.h"
#include "platform/SerialAddress.h"

#include <QSerialPortInfo>
#include <QSignalSpy>
#include <QTest>

#include <termios.h>

namespace {

constexpr int kWaitMs = 5000;

SerialSettings settingsFor(const QString &port)
{
    SerialSettings settings;
    settings.port = port;
    return settings;
}

} // namespace

// The serial link over a real pseudo-terminal: the port opens by device path, binary
// bytes arrive unchanged, the line settings of an address reach the device, and
// everything the port cannot do is refused with a reason.
class TestSerialPort : public QObject
{
    Q_OBJECT

private slots:
    void bytesFromThePowerSupplyArriveUnchanged()
    {
        PseudoTerminal line;
        QVERIFY2(line.isValid(), qPrintable(line.errorText()));
        QtSerialPort port;
        QString reason;
        QVERIFY2(port.open(settingsFor(line.slavePath()), &reason), qPrintable(reason));
        QVERIFY(port.isOpen());
        QSignalSpy received(&port, &SerialPort::received);

        // Every byte value, among them CR, LF, XON, XOFF, DLE and 0x00, twice over.
        QByteArray sent;
        for (int i = 0; i < 512; ++i)
            sent.append(char(i % 256));
        QByteArray got;
        connect(&port, &SerialPort::received, this, [&] {
            QVERIFY(port.bytesWaiting() > 0);
            got += port.readAll();
        });
        QVERIFY(line.write(sent.first(7)));
        QVERIFY(received.wait(kWaitMs));
        QVERIFY(line.write(sent.sliced(7)));
        QTRY_COMPARE_WITH_TIMEOUT(got.size(), sent.size(), kWaitMs);
        QCOMPARE(got, sent);
        QCOMPARE(port.bytesWaiting(), 0);
    }

    void bytesSentBeforeOpeningAreNotLost()
    {
        PseudoTerminal line;
        QVERIFY(line.isValid());
        QVERIFY(line.write("early"));
        QTest::qWait(20);
        QtSerialPort port;
        QByteArray got;
        connect(&port, &SerialPort::received, this, [&] { got += port.readAll(); });
        QVERIFY(port.open(settingsFor(line.slavePath()), nullptr));
        QTRY_COMPARE_WITH_TIMEOUT(got, QByteArray("early"), kWaitMs);
    }

    void addressSettingsReachTheDevice_data()
    {
        QTest::addColumn<QString>("fields");
        QTest::addColumn<speed_t>("speed");
        QTest::addColumn<tcflag_t>("parity");
        QTest::addColumn<bool>("twoStopBits");
        QTest::addColumn<bool>("hardwareFlow");
        QTest::addColumn<bool>("softwareFlow");

        const tcflag_t none = 0;
        QTest::newRow("9600 8N1 none")
            << "9600,N,8,1,0" << speed_t(B9600) << none << false << false << false;
        QTest::newRow("19200 7E2 CTS/RTS")
            << "19200,E,7,2,2" << speed_t(B19200) << none << true << true << false;
        QTest::newRow("4800 5O1 XON/XOFF")
            << "4800,O,5,1,1" << speed_t(B4800) << tcflag_t(PARODD) << false << false << true;
        QTest::newRow("38400 8M1 both") << "38400,M,8,1,3" << speed_t(B38400)
                                        << tcflag_t(PARODD | CMSPAR) << false << true << false;
        QTest::newRow("1200 6S1 none")
            << "1200,S,6,1,0" << speed_t(B1200) << tcflag_t(CMSPAR) << false << false << false;
    }

    void addressSettingsReachTheDevice()
    {
        QFETCH(QString, fields);
        QFETCH(speed_t, speed);
        QFETCH(tcflag_t, parity);
        QFETCH(bool, twoStopBits);
        QFETCH(bool, hardwareFlow);
        QFETCH(bool, softwareFlow);

        PseudoTerminal line;
        QVERIFY(line.isValid());
        QString reason;
        const std::optional<SerialSettings> settings = SerialAddress::parse(
            QStringLiteral("COM:%1,%2").arg(line.slavePath(), fields), &reason);
        QVERIFY2(settings, qPrintable(reason));
        QtSerialPort port;
        QVERIFY2(port.open(*settings, &reason), qPrintable(reason));

        // The pseudo-terminal driver forces 8 data bits and clears the parity enable
        // whatever is asked; everything else it keeps as the port set it.
        termios device{};
        QCOMPARE(tcgetattr(line.slaveFd(), &device), 0);
        QCOMPARE(cfgetispeed(&device), speed);
        QCOMPARE(device.c_cflag & (PARODD | CMSPAR), parity);
        QCOMPARE(bool(device.c_cflag & CSTOPB), twoStopBits);
        QCOMPARE(bool(device.c_cflag & CRTSCTS), hardwareFlow);
        QCOMPARE(bool(device.c_iflag & IXON), softwareFlow);
        QCOMPARE(bool(device.c_iflag & IXOFF), softwareFlow);
        // Binary input: no line editing, no echo, no CR/LF translation.
        QVERIFY(!(device.c_lflag & (ICANON | ECHO | ISIG)));
        QVERIFY(!(device.c_iflag & (ICRNL | INLCR | IGNCR | ISTRIP)));
    }

    void addressTextRoundTrips()
    {
        const QString text = QStringLiteral("COM:3,9600,E,8,1.5,2");
        const std::optional<SerialSettings> settings = SerialAddress::parse(text);
        QVERIFY(settings);
        QCOMPARE(settings->port, QStringLiteral("3"));
        QCOMPARE(settings->baudRate, 9600);
        QCOMPARE(settings->parity, QChar(u'E'));
        QCOMPARE(settings->dataBits, 8);
        QCOMPARE(settings->stopBits, QStringLiteral("1.5"));
        QCOMPARE(settings->handshaking, 2);
        QCOMPARE(SerialAddress::format(*settings), text);
        QVERIFY(SerialAddress::isSerial(text));
        QVERIFY(!SerialAddress::isSerial(u"IP:10.0.0.5:1000"));
    }

    void malformedAddressesAreRefused_data()
    {
        QTest::addColumn<QString>("address");
        QTest::newRow("tcp") << "IP:10.0.0.5:1000";
        QTest::newRow("lower-case prefix") << "com:3,9600,E,8,1,2";
        QTest::newRow("five fields") << "COM:3,9600,E,8,1";
        QTest::newRow("seven fields") << "COM:3,9600,E,8,1,2,0";
        QTest::newRow("no port") << "COM:,9600,E,8,1,2";
        QTest::newRow("baud text") << "COM:3,fast,E,8,1,2";
        QTest::newRow("baud zero") << "COM:3,0,E,8,1,2";
        QTest::newRow("parity word") << "COM:3,9600,Even,8,1,2";
        QTest::newRow("parity letter") << "COM:3,9600,X,8,1,2";
        QTest::newRow("data bits 9") << "COM:3,9600,E,9,1,2";
        QTest::newRow("data bits 3") << "COM:3,9600,E,3,1,2";
        QTest::newRow("stop bits 3") << "COM:3,9600,E,8,3,2";
        QTest::newRow("handshaking 4") << "COM:3,9600,E,8,1,4";
        QTest::newRow("handshaking -1") << "COM:3,9600,E,8,1,-1";
    }

    void malformedAddressesAreRefused()
    {
        QFETCH(QString, address);
        QString reason;
        QVERIFY(!SerialAddress::parse(address, &reason));
        QVERIFY(!reason.isEmpty());
    }

    void whatThePortCannotDoIsRefused_data()
    {
        QTest::addColumn<QString>("port");
        QTest::addColumn<int>("dataBits");
        QTest::addColumn<QString>("stopBits");
        QTest::addColumn<QString>("reasonPart");

        const QString pty = QStringLiteral("<pty>");
        const QString beyond = QString::number(QSerialPortInfo::availablePorts().size() + 1);
        QTest::newRow("4 data bits") << pty << 4 << "1"
                                     << "4 data bits";
        // Outside Windows a terminal device has no 1.5 stop bits; QSerialPort would run
        // the line with one and say nothing.
        QTest::newRow("1.5 stop bits") << pty << 8 << "1.5"
                                       << "1.5 stop bits";
        QTest::newRow("number beyond the listed devices")
            << beyond << 8 << "1" << QStringLiteral("No serial port number %1").arg(beyond);
        QTest::newRow("number 0") << "0" << 8 << "1"
                                  << "Invalid serial port number 0";
        const QString missing = QStringLiteral("/dev/no-such-welder-port");
        QTest::newRow("missing path") << missing << 8 << "1" << missing;
        QTest::newRow("empty port") << "" << 8 << "1"
                                    << "No serial port";
    }

    void whatThePortCannotDoIsRefused()
    {
        QFETCH(QString, port);
        QFETCH(int, dataBits);
        QFETCH(QString, stopBits);
        QFETCH(QString, reasonPart);

        PseudoTerminal line;
        QVERIFY(line.isValid());
        SerialSettings settings = settingsFor(port == u"<pty>" ? line.slavePath() : port);
        settings.dataBits = dataBits;
        settings.stopBits = stopBits;
        QtSerialPort serial;
        QString reason;
        QVERIFY(!serial.open(settings, &reason));
        QVERIFY2(reason.contains(reasonPart), qPrintable(reason));
        QVERIFY(!serial.isOpen());
    }

    void busyPortIsRefused()
    {
        PseudoTerminal line;
        QVERIFY(line.isValid());
        QtSerialPort first;
        QVERIFY(first.open(settingsFor(line.slavePath()), nullptr));
        QtSerialPort second;
        QString reason;
        QVERIFY(!second.open(settingsFor(line.slavePath()), &reason));
        QVERIFY2(reason.startsWith(QStringLiteral("Cannot open ")), qPrintable(reason));
        QVERIFY(first.isOpen());

        // Once the first lets go, the port can be had again.
        first.close();
        QVERIFY2(second.open(settingsFor(line.slavePath()), &reason), qPrintable(reason));
    }

    // A closed port opens again and receives; a port whose far end is gone closes itself.
    void reopenedPortReceivesUntilTheFarEndIsGone()
    {
        PseudoTerminal line;
        QVERIFY(line.isValid());
        QtSerialPort port;
        QVERIFY(port.open(settingsFor(line.slavePath()), nullptr));
        port.close();
        QVERIFY(!port.isOpen());
        QVERIFY(port.open(settingsFor(line.slavePath()), nullptr));
        QByteArray got;
        connect(&port, &SerialPort::received, this, [&] { got += port.readAll(); });
        QSignalSpy lost(&port, &SerialPort::lost);
        QVERIFY(line.write("last"));
        QTRY_COMPARE_WITH_TIMEOUT(got, QByteArray("last"), kWaitMs);

        // Without the close, the failed device would report itself on every pass of the
        // event loop for as long as the program runs.
        line.closeSlave();
        line.closeMaster();
        QTRY_VERIFY_WITH_TIMEOUT(!port.isOpen(), kWaitMs);
        QCOMPARE(got, QByteArray("last"));
        // The monitor hears of it once, as a device gone away.
        QTest::qWait(50);
        QCOMPARE(lost.count(), 1);
    }
};

QTEST_GUILESS_MAIN(TestSerialPort)
#include "tst_serialport.moc"

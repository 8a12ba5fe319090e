#include "DialogFixture.h"
#include "PseudoTerminal.h"
#include "SampleWelds.h"

#include "dialogs/dlgIPSetup.h"
#include "platform/ProgramError.h"
#include "platform/TcpSocketPort.h"
#include "protocol/CorvaneParser.h"
#include "protocol/Function26Frame.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QTcpServer>
#include <QTcpSocket>

#include <memory>

namespace {

constexpr int kWaitMs = 10000;
const QString kDashes(32, u'-');

// The decoded dump of SampleWelds::record(15) in the metric system, worked out by hand
// from the values the record was built with and the wire's scale factors. The sample box
// shows a line of dashes, then each field (here separated by ';') indented by four blanks.
const QString kRecord15Fields =
    "Cycle Count: 15;Hour: 22;Minute: 5;Second: 15;Year: 2026;Month: 11;Day: 14;"
    "Weld Time: 0.251;Energy: 120.4;Distance: 31.3944;Weld Collapse: 1.016;"
    "Total Collapse: 1.0922;Start Frequency: 19950;End Frequency: 19910;"
    "Frequency Change: -40;Frequency Minimum: 19900;Frequency Maximum: 19960;"
    "Velocity: 1270;Trigger Distance: 27.94;Reject Part Alarms: 262144;"
    "Suspect Part Alarms: 0;No Cycle Alarms: 0;Overload Alarms: 0;"
    "Equipment Failure Alarms: 0;Cycle Modified Alarms: 80;Preset #: 3;Note Alarms: 0;"
    "Amplitude A: 80;Amplitude B: 60;Mode: 3;PS Control Flags: 33;Peak Power: 45.5;"
    "Weld Pressure: -213.59;Weld Force: -4.448222;Hold Force: 400.33998;"
    "Total Cycle Time: 0.85;Trigger Force: 88.96444";

QStringList record15()
{
    QStringList lines{kDashes};
    for (const QString &field : kRecord15Fields.split(u';'))
        lines.append(QStringLiteral("    ") + field);
    return lines;
}

QByteArray frame(qint32 cycle)
{
    return Function26Frame::encode(SampleWelds::record(cycle), MeasurementSystem::Metric);
}

// The power supply's end of the cable as a test plays it: the peer of a local TCP
// server, or the master side of a pseudo-terminal.
struct FarEnd
{
    explicit FarEnd(bool serial = false)
        : serial(serial)
    {
        server.listen(QHostAddress::LocalHost, 0);
    }
    QString settings() const
    {
        return serial ? QStringLiteral("COM:%1,9600,N,8,1,0").arg(cable.slavePath())
                      : QStringLiteral("IP:127.0.0.1:%1").arg(server.serverPort());
    }
    // Waits until the console's link reaches this end.
    bool attached()
    {
        if (!serial && !peer && server.waitForNewConnection(kWaitMs))
            peer = server.nextPendingConnection();
        return serial ? cable.isValid() : peer != nullptr;
    }
    void send(const QByteArray &bytes)
    {
        if (serial)
            cable.write(bytes);
        else if (peer->write(bytes) == bytes.size())
            peer->flush();
    }

    bool serial;
    QTcpServer server;
    QTcpSocket *peer = nullptr;
    PseudoTerminal cable;
};

// The communications setup dialog with its services, set to reach a far end.
struct Console
{
    explicit Console(bool serial = false)
        : far(std::make_unique<FarEnd>(serial))
        , dialog(fixture.language, fixture.services())
    {
        dialog.RefreshSettings(far->settings());
        dialog.show();
    }
    // Presses Start and waits until the link reaches the far end.
    bool start()
    {
        click(&dialog, "bnStartStop");
        return far->attached();
    }
    // A fresh far end for the next start.
    void replaceFarEnd()
    {
        far = std::make_unique<FarEnd>();
        dialog.RefreshSettings(far->settings());
    }

    DialogFixture fixture;
    std::unique_ptr<FarEnd> far;
    dlgIPSetup dialog;
};

// The sample box's decoded entries, each split into its lines.
QList<QStringList> decodedEntries(const QString &text)
{
    QList<QStringList> entries;
    for (const QString &line : text.split(u'\n', Qt::SkipEmptyParts)) {
        if (line == kDashes)
            entries.append(QStringList());
        if (!entries.isEmpty())
            entries.last().append(line);
    }
    return entries;
}

QList<qint32> cycleCounts(const QList<QStringList> &entries)
{
    QList<qint32> counts;
    for (const QStringList &entry : entries)
        counts.append(entry.value(1).section(u':', 1).trimmed().toInt());
    return counts;
}

// The bytes of the sample box's hexadecimal entries; nothing when an entry's length
// line does not match its bytes or a digit is in lower case.
QByteArray hexBytes(const QString &text)
{
    const QStringList lines = text.split(u'\n', Qt::SkipEmptyParts);
    QByteArray all;
    for (qsizetype i = 0; i + 1 < lines.size(); i += 2) {
        const QString hex = lines.at(i + 1);
        const QByteArray bytes = QByteArray::fromHex(hex.toLatin1());
        if (lines.at(i) != QStringLiteral("Length: %1").arg(bytes.size()) || hex != hex.toUpper())
            return {};
        all += bytes;
    }
    return all;
}

} // namespace

// The test console of the communications setup against real links: a local TCP server,
// a pseudo-terminal and the power supply simulator, in hexadecimal and decoded mode.
class TestTestConsole : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }

    void halfFrameWaitsForItsRest_data()
    {
        QTest::addColumn<QString>("transport");
        QTest::newRow("tcp") << QStringLiteral("tcp");
        QTest::newRow("serial") << QStringLiteral("serial");
    }

    void halfFrameWaitsForItsRest()
    {
        QFETCH(QString, transport);
        Console console(transport == u"serial");
        dlgIPSetup &dialog = console.dialog;
        QVERIFY(console.start());
        QTRY_COMPARE(status(dialog), QStringLiteral("Connected"));
        QCOMPARE(control<QPushButton>(&dialog, "bnStartStop")->text(), QStringLiteral("&Stop"));

        const QByteArray bytes = frame(15);
        console.far->send(bytes.first(60));
        QTRY_COMPARE_WITH_TIMEOUT(dialog.receiveBuffer().size(), 60, kWaitMs);
        QCOMPARE(sample(dialog), QString());

        // The rest of the frame and the one byte behind it that marks it complete.
        console.far->send(bytes.sliced(60) + QByteArray(1, '\x55'));
        QTRY_VERIFY_WITH_TIMEOUT(!sample(dialog).isEmpty(), kWaitMs);
        QCOMPARE(sample(dialog).split(u'\n', Qt::SkipEmptyParts), record15());
        QCOMPARE(dialog.receiveBuffer().size(), 0);
        QVERIFY(console.fixture.errors.isEmpty());
    }

    void consoleKeepsGoingPastBadInput()
    {
        Console console;
        dlgIPSetup &dialog = console.dialog;
        const RecordingErrorReport &errors = console.fixture.errors;
        QVERIFY(console.start());

        // A frame with a broken end marker is reported, and the console reads on.
        QByteArray broken = frame(3);
        broken[broken.size() - 1] = '\x04';
        console.far->send(broken + QByteArray(1, '\x55'));
        QTRY_COMPARE_WITH_TIMEOUT(errors.count(), 1, kWaitMs);
        QCOMPARE(errors.last().location, QStringLiteral("dlgIPSetup.Winsock1_DataArrival"));
        QCOMPARE(errors.last().number, ProgramError::kProgramErrorNumber);
        QCOMPARE(errors.last().description,
                 QStringLiteral("Unable to resolve End of Transmission"));
        QVERIFY(errors.last().source.contains(u"dlgIPSetup.ShowProcessedData"));
        QCOMPARE(dialog.receiveBuffer().size(), 0);
        QCOMPARE(sample(dialog), QString());

        // Noise from a wrong baud rate does not pile up in front of the next frame.
        console.far->send(QByteArray(5000, '\x7e'));
        QTRY_COMPARE_WITH_TIMEOUT(dialog.receiveBuffer().size(), 0, kWaitMs);
        QTest::qWait(50);
        QCOMPARE(dialog.receiveBuffer().size(), 0);

        // A frame of another function is passed over; the weld record behind it in the
        // same arrival is shown.
        console.far->send(Function26Frame::encodeFrame(5, QByteArray(10, '\x01')) + frame(4) +
                          "\x55");
        QTRY_COMPARE_WITH_TIMEOUT(cycleCounts(decodedEntries(sample(dialog))), QList<qint32>{4},
                                  kWaitMs);

        // Two records in one arrival: the console shows the first and starts afresh.
        console.far->send(frame(5) + frame(6) + "\x55");
        QTRY_COMPARE_WITH_TIMEOUT(cycleCounts(decodedEntries(sample(dialog))),
                                  (QList<qint32>{4, 5}), kWaitMs);
        QCOMPARE(dialog.receiveBuffer().size(), 0);
        QCOMPARE(errors.count(), 1);
        QVERIFY(dialog.consoleRunning());
    }

    void rawDataShowsEveryByteInHex()
    {
        Console console;
        dlgIPSetup &dialog = console.dialog;
        tick(&dialog, "chkRawData");
        QVERIFY(control<QCheckBox>(&dialog, "chkRawData")->isChecked());
        QVERIFY(console.start());

        console.far->send(QByteArray("\x10\x02\xab\x00\x0f", 5));
        QTRY_COMPARE_WITH_TIMEOUT(sample(dialog), QStringLiteral("Length: 5\n10 02 AB 00 0F\n"),
                                  kWaitMs);
        // Raw bytes never reach the decoder.
        QCOMPARE(dialog.receiveBuffer().size(), 0);

        QApplication::clipboard()->clear();
        click(&dialog, "bnCopy");
        QCOMPARE(QApplication::clipboard()->text(), sample(dialog));
        click(&dialog, "bnClear");
        QCOMPARE(sample(dialog), QString());

        // Nothing logged yet: no viewer, but a word of why.
        click(&dialog, "bnErrorLog");
        QVERIFY(console.fixture.viewerCommands.isEmpty());
        QVERIFY(console.fixture.messages.last().text.contains(
            QDir::toNativeSeparators(QStringLiteral("/srv/Corvane/corvane-monitor.log")) +
            QStringLiteral(" is still empty")));
    }

    void linkEndsShowInTheStatusLine()
    {
        Console console;
        dlgIPSetup &dialog = console.dialog;
        auto *startStop = control<QPushButton>(&dialog, "bnStartStop");
        auto *type = control<QComboBox>(&dialog, "cmboCommunicationsType");
        QCOMPARE(startStop->text(), QStringLiteral("&Start"));
        click(&dialog, "bnStartStop");
        QCOMPARE(status(dialog), QStringLiteral("Connecting..."));
        QVERIFY(console.far->attached());
        QTRY_COMPARE(status(dialog), QStringLiteral("Connected"));
        QVERIFY(!type->isEnabled());
        // An empty settings text now stands for where the console's socket is connected.
        dialog.RefreshSettings(QString());
        QCOMPARE(dialog.settingsText(), console.far->settings());

        // The power supply hangs up: the console is ready to start again.
        console.far->peer->disconnectFromHost();
        QTRY_COMPARE_WITH_TIMEOUT(status(dialog), QStringLiteral("Disconnected"), kWaitMs);
        QCOMPARE(startStop->text(), QStringLiteral("&Start"));
        QVERIFY(type->isEnabled());

        // Started again, stopped by the user: the far end sees the link go.
        console.replaceFarEnd();
        QVERIFY(console.start());
        QTRY_COMPARE(status(dialog), QStringLiteral("Connected"));
        click(&dialog, "bnStartStop");
        QCOMPARE(status(dialog), QStringLiteral("Disconnected"));
        QCOMPARE(startStop->text(), QStringLiteral("&Start"));
        QTRY_COMPARE_WITH_TIMEOUT(console.far->peer->state(), QAbstractSocket::UnconnectedState,
                                  kWaitMs);

        // Cancel closes a running link as well.
        console.replaceFarEnd();
        QVERIFY(console.start());
        click(&dialog, "CancelButton");
        QVERIFY(!dialog.isVisible() && !dialog.consoleRunning());
        QTRY_COMPARE_WITH_TIMEOUT(console.far->peer->state(), QAbstractSocket::UnconnectedState,
                                  kWaitMs);
        QVERIFY(console.fixture.errors.isEmpty());
    }

    void linkThatWillNotOpenSaysWhy()
    {
        DialogFixture fixture;
        SetupServices services = fixture.services();
        services.makeSocket = [] {
            auto socket = std::make_unique<TcpSocketPort>();
            socket->setMinimumAttemptTime(0);
            return socket;
        };
        quint16 closedPort = 0;
        {
            QTcpServer gone;
            QVERIFY(gone.listen(QHostAddress::LocalHost, 0));
            closedPort = gone.serverPort();
        }
        dlgIPSetup dialog(fixture.language, services);
        dialog.RefreshSettings(QStringLiteral("IP:127.0.0.1:%1").arg(closedPort));
        dialog.show();
        click(&dialog, "bnStartStop");
        QTRY_VERIFY_WITH_TIMEOUT(status(dialog).startsWith(u"10061 - "), kWaitMs);
        QVERIFY(status(dialog).size() > 8);
        QCOMPARE(control<QPushButton>(&dialog, "bnStartStop")->text(), QStringLiteral("&Start"));
        QCOMPARE(fixture.messages.beeps, 0);

        // A serial port that does not open beeps and tells why.
        dialog.RefreshSettings(QStringLiteral("COM:/dev/corvane-no-such-port,9600,N,8,1,0"));
        click(&dialog, "bnStartStop");
        QCOMPARE(fixture.messages.beeps, 1);
        QVERIFY2(status(dialog).contains(u"/dev/corvane-no-such-port"), qPrintable(status(dialog)));
        QCOMPARE(control<QPushButton>(&dialog, "bnStartStop")->text(), QStringLiteral("&Start"));
        QVERIFY(!dialog.consoleRunning());
        QVERIFY(fixture.errors.isEmpty());
    }

    void simulatedSupply_data()
    {
        QTest::addColumn<QString>("transport");
        QTest::addColumn<bool>("raw");
        QTest::newRow("pty, decoded") << QStringLiteral("pty") << false;
        QTest::newRow("tcp, hex") << QStringLiteral("tcp") << true;
    }

    void simulatedSupply()
    {
        QFETCH(QString, transport);
        QFETCH(bool, raw);
        DialogFixture fixture;
        QProcess sim;
        // Without a weld count the supply welds until it is stopped and never hangs up;
        // noise between the welds must not disturb either mode.
        const QString settings = startSim(sim, transport, {"--interval", "100", "--garbage", "7"});
        QVERIFY2(!settings.isEmpty(), "the simulator did not start");
        dlgIPSetup dialog(fixture.language, fixture.services());
        dialog.setEquipmentName(QStringLiteral("Press 7"));
        dialog.RefreshSettings(settings);
        dialog.show();
        if (raw)
            tick(&dialog, "chkRawData");
        click(&dialog, "bnStartStop");

        QList<qint32> counts;
        if (raw) {
            // The bytes shown decode to the welds in order.
            const CorvaneParser parser(MeasurementSystem::Metric, fixture.clock);
            QTRY_VERIFY_WITH_TIMEOUT(hexBytes(sample(dialog)).size() > 3 * (124 + 1 + 7), kWaitMs);
            ReceiveBuffer buffer(hexBytes(sample(dialog)));
            while (const std::optional<CorvaneFUN26> record = parser.GetFunction(buffer))
                counts.append(record->CycleCount);
        } else {
            QTRY_VERIFY_WITH_TIMEOUT(decodedEntries(sample(dialog)).size() >= 3, kWaitMs);
            for (const QStringList &entry : decodedEntries(sample(dialog))) {
                QCOMPARE(entry.size(), 38);
                QVERIFY(entry.constLast().startsWith(u"    Trigger Force: "));
            }
            counts = cycleCounts(decodedEntries(sample(dialog)));
        }
        QCOMPARE(counts.mid(0, 3), (QList<qint32>{1, 2, 3}));
        QVERIFY(fixture.errors.isEmpty());
        keepPicture(&dialog,
                    QStringLiteral("comm-setup-%1-%2.png")
                        .arg(transport, raw ? QStringLiteral("hex") : QStringLiteral("decoded")));
        click(&dialog, "bnStartStop");
        QVERIFY(!dialog.consoleRunning());
        stopSim(sim);
    }

private:
    static QString status(dlgIPSetup &dialog)
    {
        return control<QLabel>(&dialog, "lblStatus")->text();
    }

    static QString sample(dlgIPSetup &dialog)
    {
        return control<QPlainTextEdit>(&dialog, "txtSample")->toPlainText();
    }

    // Starts the simulator on TCP or a pseudo-terminal; the settings text that reaches it.
    static QString startSim(QProcess &sim, const QString &transport, const QStringList &options)
    {
        const QStringList supply =
            transport == u"tcp" ? QStringList{"--tcp", "0"} : QStringList{"--pty"};
        sim.start(QStringLiteral(CORVANE_SIM_PATH), supply + options);
        if (!sim.waitForStarted(kWaitMs))
            return {};
        QByteArray line;
        while (!line.contains('\n') && sim.waitForReadyRead(kWaitMs))
            line += sim.readAllStandardOutput();
        const QString started = QString::fromLocal8Bit(line).trimmed();
        if (started.startsWith(u"tcp "))
            return QStringLiteral("IP:") + started.sliced(4);
        if (started.startsWith(u"pty "))
            return QStringLiteral("COM:%1,9600,N,8,1,0").arg(started.sliced(4));
        return {};
    }

    static void stopSim(QProcess &sim)
    {
        if (sim.state() == QProcess::NotRunning)
            return;
        sim.terminate();
        if (!sim.waitForFinished(kWaitMs)) {
            sim.kill();
            sim.waitForFinished();
        }
    }
};

QTEST_MAIN(TestTestConsole)
#include "tst_testconsole.moc"

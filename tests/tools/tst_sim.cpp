#include "ManualClock.h"
#include "PseudoTerminal.h"
#include "SampleWelds.h"

#include "protocol/CorvaneParser.h"
#include "protocol/Function26Frame.h"

#include <QProcess>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <numeric>

namespace {

constexpr int kWaitMs = 10000;
constexpr qsizetype kFrameBytes = 124;
constexpr qsizetype kWeldBytes = kFrameBytes + 1; // frame and its trailing byte

// Every record a receiver takes from the stream, in order.
QList<CorvaneFUN26> decode(const QByteArray &stream,
                           MeasurementSystem system = MeasurementSystem::Metric)
{
    const ManualClock clock;
    const CorvaneParser parser(system, clock);
    ReceiveBuffer buffer(stream);
    QList<CorvaneFUN26> records;
    while (std::optional<CorvaneFUN26> record = parser.GetFunction(buffer))
        records.append(*record);
    return records;
}

QList<qint32> cycleCounts(const QList<CorvaneFUN26> &records)
{
    QList<qint32> counts;
    for (const CorvaneFUN26 &record : records)
        counts.append(record.CycleCount);
    return counts;
}

QList<qint32> countsFrom(qint32 first, qint32 last)
{
    QList<qint32> counts(qMax(0, last - first + 1));
    std::iota(counts.begin(), counts.end(), first);
    return counts;
}

// The record without what depends on the time of day: when it was decoded and the
// power supply's clock.
CorvaneFUN26 withoutClock(CorvaneFUN26 record)
{
    record.AcquiredTime = {};
    record.Hour = record.Year = 0;
    record.Minute = record.Second = record.Month = record.Day = 0;
    return record;
}

// A stream of whole welds: each a good frame followed by exactly one byte.
bool isWeldByWeld(const QByteArray &stream, int welds)
{
    if (stream.size() != welds * kWeldBytes)
        return false;
    for (int i = 0; i < welds; ++i) {
        const QByteArray frame = stream.mid(i * kWeldBytes, kFrameBytes);
        if (!frame.startsWith("\x10\x02") || !frame.endsWith("\x10\x03"))
            return false;
    }
    return true;
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

// The simulator as a monitor meets it: the real program, started with its options, read
// through a TCP client, a pseudo-terminal it writes into, or its capture file. (Its own
// pseudo-terminal is read through a serial port by the communications setup suite.)
class TestSim : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void reconnectingClientContinuesTheCycleCount()
    {
        QProcess sim;
        const QString line =
            startSim(sim, {"--tcp", "0", "--count", "8", "--interval", "30", "--seed", "3"});
        QTcpSocket first;
        first.connectToHost(QStringLiteral("127.0.0.1"), quint16(line.section(u':', 1).toUInt()));
        QByteArray firstStream;
        QTRY_VERIFY_WITH_TIMEOUT((firstStream += first.readAll()).size() >= 2 * kWeldBytes,
                                 kWaitMs);
        first.abort();
        const QList<qint32> before = cycleCounts(decode(firstStream));
        QVERIFY(before.size() >= 2);
        QCOMPARE(before, countsFrom(1, before.size()));

        const QList<qint32> after = cycleCounts(decode(readTcp(line)));
        QVERIFY(!after.isEmpty());
        // A weld on its way when the first client left may be lost, never repeated.
        QVERIFY(after.first() > before.last());
        QCOMPARE(after, countsFrom(after.first(), 8));
        QVERIFY(finishes(sim));
    }

    void serialSupplyWritesToTheDevice()
    {
        PseudoTerminal cable;
        QVERIFY2(cable.isValid(), qPrintable(cable.errorText()));
        QProcess sim;
        const QString line =
            startSim(sim, {"--serial", cable.slavePath(), "--count", "4", "--interval", "0"});
        QCOMPARE(line, QStringLiteral("serial %1").arg(cable.slavePath()));
        QByteArray stream;
        QTRY_VERIFY_WITH_TIMEOUT((stream += cable.read(10)).size() >= 4 * kWeldBytes, kWaitMs);
        QVERIFY(isWeldByWeld(stream, 4));
        QCOMPARE(cycleCounts(decode(stream)), countsFrom(1, 4));
        QVERIFY(finishes(sim));
    }

    // Every supply announces itself; the file supply is done at once, the TCP supply welds
    // only for a client and the program waits for it.
    void tcpSupplyWeldsOnlyForAClient()
    {
        const QString path = m_dir.filePath(QStringLiteral("both.bin"));
        QProcess sim;
        startSim(sim,
                 {"--output", path, "--tcp", "0", "--count", "20", "--interval", "0", "--garbage",
                  "50", "--seed", "11"},
                 2);
        QCOMPARE(m_lines.value(0), QStringLiteral("file %1").arg(path));
        QVERIFY(m_lines.value(1).startsWith(u"tcp 127.0.0.1:"));
        QTest::qWait(200);
        QCOMPARE(sim.state(), QProcess::Running);
        const QByteArray stream = readTcp(m_lines.value(1));
        QCOMPARE(stream.size(), 20 * (kWeldBytes + 50));
        // Noise never holds a DLE: every 0x10 on the line belongs to a frame.
        for (int i = 0; i < 20; ++i) {
            const qsizetype noise = i * (kWeldBytes + 50) + kFrameBytes;
            QVERIFY(!stream.mid(noise, 51).contains('\x10'));
        }
        QCOMPARE(cycleCounts(decode(stream)), countsFrom(1, 20));
        QVERIFY(finishes(sim));
        QCOMPARE(cycleCounts(decode(readFile(path))), countsFrom(1, 20));
    }

    // A replay gives back the capture byte for byte, also noise, a frame of another
    // function, a frame with a broken end marker and a tail without a frame.
    void replayGivesBackTheCapture_data()
    {
        QTest::addColumn<QStringList>("pacing");
        QTest::addColumn<bool>("recorded");
        QTest::newRow("frame by frame") << QStringList{"--interval", "0"} << true;
        QTest::newRow("paced byte stream") << QStringList{"--pace", "40000"} << true;
        QTest::newRow("not only frames") << QStringList{"--interval", "0"} << false;
    }

    void replayGivesBackTheCapture()
    {
        QFETCH(QStringList, pacing);
        QFETCH(bool, recorded);
        const QString capture = m_dir.filePath(QStringLiteral("capture.bin"));
        if (recorded) {
            QProcess recorder;
            QCOMPARE(startSim(recorder, {"--output", capture, "--count", "8", "--seed", "5",
                                         "--interval", "0", "--us"}),
                     QStringLiteral("file %1").arg(capture));
            QVERIFY(finishes(recorder));
            QVERIFY(isWeldByWeld(readFile(capture), 8));
        } else {
            QByteArray broken =
                Function26Frame::encode(SampleWelds::record(9), MeasurementSystem::Metric);
            broken[kFrameBytes - 1] = '\x04';
            QFile file(capture);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(QByteArray("noise\x10") + SampleWelds::stream(2) +
                       Function26Frame::encodeFrame(5, QByteArray(2, '\x10')) + broken +
                       SampleWelds::stream(1) + QByteArray("\x10\x02tail"));
        }
        QProcess player;
        const QString line =
            startSim(player, QStringList{"--tcp", "0", "--replay", capture} + pacing);
        const QByteArray replayed = readTcp(line);
        QCOMPARE(replayed, readFile(capture));
        if (recorded)
            QCOMPARE(cycleCounts(decode(replayed, MeasurementSystem::US)), countsFrom(1, 8));
        QVERIFY(finishes(player));
    }

    void sameSeedGivesTheSameValues()
    {
        const auto record = [this](const QString &name, const QString &seed) {
            const QString path = m_dir.filePath(name);
            QProcess sim;
            startSim(sim, {"--output", path, "--count", "10", "--interval", "0", "--seed", seed,
                           "--alarm-probability", "0.5"});
            finishes(sim);
            QList<CorvaneFUN26> records;
            for (const CorvaneFUN26 &r : decode(readFile(path)))
                records.append(withoutClock(r));
            return records;
        };
        const QList<CorvaneFUN26> first = record(QStringLiteral("a.bin"), QStringLiteral("42"));
        QCOMPARE(first.size(), 10);
        QVERIFY(first == record(QStringLiteral("b.bin"), QStringLiteral("42")));
        QVERIFY(first != record(QStringLiteral("c.bin"), QStringLiteral("43")));
    }

    void terminationLeavesWholeWeldsInTheFile()
    {
        const QString path = m_dir.filePath(QStringLiteral("endless.bin"));
        QProcess sim;
        startSim(sim, {"--output", path, "--interval", "5"});
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(path).size() >= 3 * kWeldBytes, kWaitMs);
        sim.terminate();
        QVERIFY(sim.waitForFinished(kWaitMs));
        QCOMPARE(sim.exitStatus(), QProcess::NormalExit);
        QCOMPARE(sim.exitCode(), 0);
        const QByteArray stream = readFile(path);
        QCOMPARE(stream.size() % kWeldBytes, 0);
        QCOMPARE(cycleCounts(decode(stream)), countsFrom(1, int(stream.size() / kWeldBytes)));
    }

    void badUsageExitsWithTwo_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("no supply") << QStringList{"--count", "3"};
        QTest::newRow("unknown option") << QStringList{"--tcp", "0", "--loud"};
        QTest::newRow("port text") << QStringList{"--tcp", "welder"};
        QTest::newRow("port too big") << QStringList{"--tcp", "70000"};
        QTest::newRow("negative count") << QStringList{"--pty", "--count", "-1"};
        QTest::newRow("scatter text") << QStringList{"--pty", "--scatter", "wide"};
        QTest::newRow("no value") << QStringList{"--pty", "--interval"};
        QTest::newRow("pace without replay") << QStringList{"--pty", "--pace", "100"};
        QTest::newRow("stray argument") << QStringList{"--pty", "now"};
    }

    void badUsageExitsWithTwo()
    {
        QFETCH(QStringList, arguments);
        QProcess sim;
        sim.start(simPath(), arguments);
        QVERIFY(sim.waitForFinished(kWaitMs));
        QCOMPARE(sim.exitCode(), 2);
        QCOMPARE(sim.readAllStandardOutput(), QByteArray());
        const QByteArray message = sim.readAllStandardError();
        QVERIFY2(message.startsWith("corvane-sim: ") && message.count('\n') == 1,
                 message.constData());
    }

private:
    static QString simPath() { return QStringLiteral(CORVANE_SIM_PATH); }

    // Starts the simulator and returns the first of its start lines, after waiting for
    // `lines` of them (kept in m_lines).
    QString startSim(QProcess &sim, const QStringList &arguments, int lines = 1)
    {
        m_lines.clear();
        sim.setProcessChannelMode(QProcess::SeparateChannels);
        sim.start(simPath(), arguments);
        if (!sim.waitForStarted(kWaitMs))
            return {};
        QByteArray out;
        while (out.count('\n') < lines && sim.waitForReadyRead(kWaitMs))
            out += sim.readAllStandardOutput();
        m_lines = QString::fromLocal8Bit(out).split(u'\n', Qt::SkipEmptyParts);
        return m_lines.value(0);
    }

    // Ends cleanly on its own.
    static bool finishes(QProcess &sim)
    {
        // waitForFinished() is false for a process that has already ended.
        if (sim.state() != QProcess::NotRunning && !sim.waitForFinished(kWaitMs)) {
            qWarning("the simulator is still running");
            sim.kill();
            sim.waitForFinished();
            return false;
        }
        if (sim.exitStatus() == QProcess::NormalExit && sim.exitCode() == 0)
            return true;
        qWarning("the simulator ended with %d: %s", sim.exitCode(),
                 sim.readAllStandardError().constData());
        return false;
    }

    // Connects to the supply of a "tcp 127.0.0.1:PORT" line and reads until it closes.
    static QByteArray readTcp(const QString &line)
    {
        QTcpSocket client;
        client.connectToHost(QStringLiteral("127.0.0.1"), quint16(line.section(u':', 1).toUInt()));
        QByteArray stream;
        while (client.state() != QAbstractSocket::UnconnectedState &&
               client.waitForReadyRead(kWaitMs))
            stream += client.readAll();
        return stream + client.readAll();
    }

    QTemporaryDir m_dir;
    QStringList m_lines;
};

QTEST_GUILESS_MAIN(TestSim)
#include "tst_sim.moc"

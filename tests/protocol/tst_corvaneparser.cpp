#include "ManualClock.h"
#include "Refusal.h"
#include "SampleWelds.h"
#include "TestSuites.h"

#include "platform/ProgramError.h"
#include "protocol/CorvaneParser.h"
#include "protocol/CorvaneUSWSupport.h"
#include "protocol/Function26Frame.h"

#include <QRandomGenerator>
#include <QTest>

#include <limits>

using namespace CorvaneUSWSupport;

namespace {

constexpr qint32 kProgramError = qint32(0x80040000u);
const QString kEndOfTransmission = QStringLiteral("Unable to resolve End of Transmission");

QByteArray bytes(std::initializer_list<int> values)
{
    QByteArray out;
    for (int value : values)
        out.append(char(value));
    return out;
}

QByteArray weldFrame(qint32 cycle)
{
    return Function26Frame::encode(SampleWelds::record(cycle), MeasurementSystem::Metric);
}

// The record the parser should produce for a sample frame, stamped by the test clock.
CorvaneFUN26 expectedWeld(qint32 cycle, const Clock &clock)
{
    CorvaneFUN26 record = SampleWelds::record(cycle);
    record.AcquiredTime = clock.now();
    return record;
}

// A frame of another function: function 5 with two data bytes is 10 bytes long.
QByteArray otherFrame(qint16 function = 5, QByteArray data = bytes({0xAB, 0xCD}))
{
    return Function26Frame::encodeFrame(function, data);
}

// Takes every record the buffer yields, as a receiver does after an arrival.
QList<CorvaneFUN26> drain(const CorvaneParser &parser, ReceiveBuffer &buffer)
{
    QList<CorvaneFUN26> records;
    for (;;) {
        const qint32 before = ByteCount(buffer);
        std::optional<CorvaneFUN26> record = parser.GetFunction(buffer);
        if (record)
            records.append(*record);
        else if (ByteCount(buffer) == before)
            return records;
    }
}

} // namespace

// The big-endian readers of the welder link, the receive buffer, and the frame parser
// that cuts Function 26 weld records out of whatever the link delivers.
class TestCorvaneParser : public QObject
{
    Q_OBJECT

    ManualClock m_clock;
    const CorvaneParser m_parser{MeasurementSystem::Metric, m_clock};

private slots:
    void integerReaders_data()
    {
        QTest::addColumn<QByteArray>("buffer");
        QTest::addColumn<int>("pos");
        QTest::addColumn<qint16>("integer");
        QTest::addColumn<qint32>("longInt");
        QTest::newRow("zero") << bytes({0, 0, 0, 0}) << 0 << qint16(0) << 0;
        QTest::newRow("most negative")
            << bytes({0x80, 0, 0, 0}) << 0 << std::numeric_limits<qint16>::min()
            << std::numeric_limits<qint32>::min();
        QTest::newRow("most positive")
            << bytes({0x7F, 0xFF, 0xFF, 0xFF}) << 0 << std::numeric_limits<qint16>::max()
            << std::numeric_limits<qint32>::max();
        QTest::newRow("minus two")
            << bytes({0xFF, 0xFE, 0xFF, 0xFE}) << 0 << qint16(-2) << qint32(0xFFFEFFFEu);
        // High bits of the low bytes must not be taken as signs.
        QTest::newRow("unsigned low bytes")
            << bytes({0x00, 0x80, 0x00, 0xFF}) << 0 << qint16(128) << 0x008000FF;
        QTest::newRow("inside the buffer") << bytes({0x10, 0x02, 0x12, 0x34, 0x56, 0x78, 0x10}) << 2
                                           << qint16(0x1234) << 0x12345678;
    }

    void integerReaders()
    {
        QFETCH(QByteArray, buffer);
        QFETCH(int, pos);
        QFETCH(qint16, integer);
        QFETCH(qint32, longInt);
        // Without advancing the position stays; advancing moves it past what was read.
        qsizetype at = pos;
        QCOMPARE(GetInteger(buffer, at, false), integer);
        QCOMPARE(GetLong(buffer, at, false), longInt);
        QCOMPARE(GetByte(buffer, at, false), quint8(buffer[pos]));
        QCOMPARE(at, qsizetype(pos));
        QCOMPARE(GetByte(buffer, at), quint8(buffer[pos]));
        QCOMPARE(at, qsizetype(pos + 1));
        QCOMPARE(GetInteger(buffer, at = pos), integer);
        QCOMPARE(at, qsizetype(pos + 2));
        QCOMPARE(GetLong(buffer, at = pos), longInt);
        QCOMPARE(at, qsizetype(pos + 4));

        // A read that would leave the buffer fails, names its reader and moves nothing.
        const auto outside = [&](qsizetype from, auto read, const char *reader) {
            for (const bool advance : {false, true}) {
                qsizetype where = from;
                const auto error = refusal([&] { read(where, advance); });
                QVERIFY2(error, reader);
                QCOMPARE(error->number(), ProgramError::kSubscriptOutOfRange);
                QCOMPARE(error->source(), QStringLiteral("CorvaneUSWSupport.") + reader);
                QCOMPARE(where, from);
            }
        };
        const qsizetype size = buffer.size();
        outside(
            size, [&](qsizetype &w, bool a) { GetByte(buffer, w, a); }, "GetByte");
        outside(
            -1, [&](qsizetype &w, bool a) { GetByte(buffer, w, a); }, "GetByte");
        outside(
            size - 1, [&](qsizetype &w, bool a) { GetInteger(buffer, w, a); }, "GetInteger");
        outside(
            size - 3, [&](qsizetype &w, bool a) { GetLong(buffer, w, a); }, "GetLong");
        outside(
            std::numeric_limits<qsizetype>::min(),
            [&](qsizetype &w, bool a) { GetLong(buffer, w, a); }, "GetLong");
    }

    // The buffer skips consumed bytes and compacts them away later; whatever the mix of
    // arrivals and removals, it must hold exactly what a plain byte array would.
    void compactionKeepsContents()
    {
        QRandomGenerator random(20261114);
        ReceiveBuffer buffer;
        QByteArray model;
        quint8 next = 0;
        for (int step = 0; step < 20000; ++step) {
            if (random.bounded(2) == 0) {
                QByteArray piece(random.bounded(700), Qt::Uninitialized);
                for (char &c : piece)
                    c = char(next++);
                AppendBytes(buffer, piece);
                model += piece;
            } else {
                const int n = random.bounded(int(model.size()) + 20);
                RemoveLeadingBytes(buffer, n);
                model.remove(0, n);
            }
            QCOMPARE(ByteCount(buffer), int(model.size()));
            if (buffer.view() != model)
                QFAIL(qPrintable(QStringLiteral("contents differ after step %1").arg(step)));
        }
        // Removing far more than all empties it, and new bytes go to its start again.
        RemoveLeadingBytes(buffer, std::numeric_limits<int>::max());
        AppendBytes(buffer, QByteArrayView());
        AppendBytes(buffer, bytes({9}));
        QCOMPARE(buffer.toByteArray(), bytes({9}));
        QCOMPARE(buffer.view().size(), 1);
    }

    // A frame is taken only once one more byte has arrived behind its ETX.
    void frameNeedsOneByteBeyondItsEnd_data()
    {
        QTest::addColumn<char>("following");
        QTest::newRow("zero") << '\x00';
        QTest::newRow("DLE") << '\x10';
    }

    void frameNeedsOneByteBeyondItsEnd()
    {
        QFETCH(char, following);
        const QByteArray frame = weldFrame(7);
        QCOMPARE(frame.size(), 124);
        ReceiveBuffer buffer(frame);
        QVERIFY(!m_parser.GetFunction(buffer));
        QCOMPARE(buffer.toByteArray(), frame);

        AppendBytes(buffer, QByteArrayView(&following, 1));
        const std::optional<CorvaneFUN26> record = m_parser.GetFunction(buffer);
        QVERIFY(record);
        QCOMPARE(*record, expectedWeld(7, m_clock));
        QCOMPARE(buffer.toByteArray(), QByteArray(1, following));
        QVERIFY(!m_parser.GetFunction(buffer));
        QCOMPARE(ByteCount(buffer), 1);
    }

    void recordIsStampedWhenDecoded()
    {
        ReceiveBuffer buffer(weldFrame(1) + weldFrame(2) + bytes({0}));
        const QDateTime first = m_clock.now();
        QCOMPARE(m_parser.GetFunction(buffer)->AcquiredTime, first);
        m_clock.advanceSeconds(61);
        QCOMPARE(m_parser.GetFunction(buffer)->AcquiredTime, first.addSecs(61));
    }

    // Bytes that are not a frame start are dropped together with the next good frame;
    // with no frame behind them they stay.
    void garbageAroundFrames_data()
    {
        QTest::addColumn<QByteArray>("stream");
        QTest::addColumn<QList<int>>("cycles");
        QTest::addColumn<QByteArray>("left");
        const QByteArray garbage = bytes({0x10, 0x10, 0x03, 0x02, 0xAA, 0x00, 0x10, 0x03, 0x55});
        const QByteArray tail = bytes({0x42});
        QTest::newRow("before") << garbage + weldFrame(1) + tail << QList<int>{1} << tail;
        QTest::newRow("between") << weldFrame(1) + garbage + weldFrame(2) + tail << QList<int>{1, 2}
                                 << tail;
        QTest::newRow("after") << weldFrame(1) + tail + garbage << QList<int>{1} << tail + garbage;
        QTest::newRow("only garbage") << garbage + garbage << QList<int>{} << garbage + garbage;
        QTest::newRow("lone DLE STX at the end")
            << weldFrame(1) + tail + bytes({0x10, 0x02, 0x00}) << QList<int>{1}
            << tail + bytes({0x10, 0x02, 0x00});
    }

    void garbageAroundFrames()
    {
        QFETCH(QByteArray, stream);
        QFETCH(QList<int>, cycles);
        QFETCH(QByteArray, left);
        ReceiveBuffer buffer(stream);
        QList<CorvaneFUN26> expected;
        for (int cycle : cycles)
            expected.append(expectedWeld(cycle, m_clock));
        QCOMPARE(drain(m_parser, buffer), expected);
        QCOMPARE(buffer.toByteArray(), left);
    }

    // Frames of other functions are consumed whole, with what stands in front of them,
    // and yield no record.
    void otherFunctionsAreSkipped_data()
    {
        QTest::addColumn<QByteArray>("lead");
        QTest::addColumn<QByteArray>("frame");
        QTest::newRow("function 5, length 4") << QByteArray() << otherFrame();
        QTest::newRow("with garbage in front") << bytes({0xEE, 0x10, 0x03}) << otherFrame();
        QTest::newRow("function 27") << QByteArray() << otherFrame(27);
        QTest::newRow("function 282 (low byte 26)") << QByteArray() << otherFrame(0x011A);
        QTest::newRow("no data") << QByteArray() << otherFrame(5, QByteArray());
        QTest::newRow("long data") << bytes({1}) << otherFrame(9, QByteArray(300, '\x10'));
    }

    void otherFunctionsAreSkipped()
    {
        QFETCH(QByteArray, lead);
        QFETCH(QByteArray, frame);
        const QByteArray rest = weldFrame(3) + bytes({0});
        ReceiveBuffer buffer(lead + frame + rest);

        std::optional<CorvaneFUN26> record;
        qsizetype consumed = -1;
        m_parser.ProcessBlock(buffer, record, consumed);
        QVERIFY(!record);
        QCOMPARE(consumed, lead.size() + frame.size());

        QVERIFY(!m_parser.GetFunction(buffer));
        QCOMPARE(buffer.toByteArray(), rest);
        const std::optional<CorvaneFUN26> weld = m_parser.GetFunction(buffer);
        QVERIFY(weld);
        QCOMPARE(*weld, expectedWeld(3, m_clock));
    }

    // The length field of a weld record frame is never read: it is 118 whatever it says.
    void weldRecordLengthFieldIgnored_data()
    {
        QTest::addColumn<qint16>("lengthField");
        for (const qint16 length : {qint16(0), qint16(-1), std::numeric_limits<qint16>::max()})
            QTest::newRow(qPrintable(QString::number(length))) << length;
    }

    void weldRecordLengthFieldIgnored()
    {
        QFETCH(qint16, lengthField);
        const QByteArray data =
            Function26Frame::encodeData(SampleWelds::record(4), MeasurementSystem::Metric);
        const QByteArray frame = Function26Frame::encodeFrame(26, data, lengthField);
        ReceiveBuffer buffer(frame + bytes({0x10, 0x02}));
        std::optional<CorvaneFUN26> record;
        qsizetype consumed = 0;
        m_parser.ProcessBlock(buffer, record, consumed);
        QCOMPARE(consumed, 124);
        QVERIFY(record);
        QCOMPARE(*record, expectedWeld(4, m_clock));
    }

    void badEndMarker_data()
    {
        QTest::addColumn<QByteArray>("lead");
        QTest::addColumn<QByteArray>("frame");
        QTest::addColumn<int>("corrupt");
        const QByteArray weld = weldFrame(5);
        QTest::newRow("ETX wrong") << QByteArray() << weld << 123;
        QTest::newRow("DLE wrong") << QByteArray() << weld << 122;
        QTest::newRow("behind garbage") << bytes({0x01, 0x10}) << weld << 123;
        QTest::newRow("other function, ETX wrong") << QByteArray() << otherFrame() << 9;
    }

    void badEndMarker()
    {
        QFETCH(QByteArray, lead);
        QFETCH(QByteArray, frame);
        QFETCH(int, corrupt);
        frame[corrupt] = char(frame[corrupt] ^ 0x40);
        // A good frame behind the bad one is not reached: the scan stops at the bad one.
        const QByteArray stream = lead + frame + weldFrame(6) + bytes({0});
        ReceiveBuffer buffer(stream);
        const auto error = refusal([&] { m_parser.GetFunction(buffer); });
        QVERIFY2(error, "the bad end marker was accepted");
        QCOMPARE(error->number(), -2147221504);
        QCOMPARE(error->description(), kEndOfTransmission);
        QVERIFY2(error->source().contains(QLatin1String("CorvaneParser.ProcessBlock")) &&
                     error->source().contains(QLatin1String("CorvaneParser.GetFunction")),
                 qPrintable(error->source()));
        QCOMPARE(buffer.toByteArray(), stream);

        std::optional<CorvaneFUN26> record;
        qsizetype consumed = -1;
        QVERIFY_THROWS_EXCEPTION(ProgramError, m_parser.ProcessBlock(buffer, record, consumed));
        QVERIFY(!record);
        QCOMPARE(consumed, 0);
    }

    // However the link splits a stream into arrivals, the records are those of one read.
    void splitReadsGiveTheSameRecords()
    {
        const QByteArray stream = bytes({0x33, 0x10, 0x10}) + weldFrame(1) + weldFrame(2) +
                                  bytes({0x10, 0x03, 0x02}) + otherFrame() + weldFrame(3) +
                                  otherFrame(9, QByteArray(130, '\x10')) + weldFrame(4) +
                                  bytes({0x10});
        ReceiveBuffer whole(stream);
        const QList<CorvaneFUN26> expected = drain(m_parser, whole);
        QCOMPARE(expected, (QList{expectedWeld(1, m_clock), expectedWeld(2, m_clock),
                                  expectedWeld(3, m_clock), expectedWeld(4, m_clock)}));

        for (qsizetype split = 0; split <= stream.size(); ++split) {
            ReceiveBuffer buffer;
            AppendBytes(buffer, QByteArrayView(stream).first(split));
            QList<CorvaneFUN26> records = drain(m_parser, buffer);
            AppendBytes(buffer, QByteArrayView(stream).sliced(split));
            records += drain(m_parser, buffer);
            if (records != expected)
                QFAIL(qPrintable(QStringLiteral("split at byte %1 differs").arg(split)));
            QCOMPARE(buffer.toByteArray(), whole.toByteArray());
        }
        for (qsizetype piece = 1; piece <= 130; ++piece) {
            ReceiveBuffer buffer;
            QList<CorvaneFUN26> records;
            for (qsizetype at = 0; at < stream.size(); at += piece) {
                AppendBytes(buffer, QByteArrayView(stream).sliced(at).first(
                                        qMin(piece, stream.size() - at)));
                records += drain(m_parser, buffer);
            }
            if (records != expected)
                QFAIL(qPrintable(QStringLiteral("pieces of %1 bytes differ").arg(piece)));
        }
    }

    // A negative length in a frame of another function is not guarded against: the end
    // marker is looked for in front of the frame. That must end in an error, or in a
    // frame taken from the bytes in front, never in a read outside the buffer.
    void negativeLengthOfOtherFunction_data()
    {
        QTest::addColumn<QByteArray>("lead");
        QTest::addColumn<qint16>("length");
        QTest::addColumn<qint32>("number");
        QTest::newRow("before the buffer")
            << QByteArray() << qint16(-100) << ProgramError::kSubscriptOutOfRange;
        QTest::newRow("minus one") << QByteArray() << qint16(-1) << kProgramError;
        QTest::newRow("inside the frame") << QByteArray() << qint16(-3) << kProgramError;
        QTest::newRow("inside the garbage in front")
            << bytes({0x20, 0x21, 0x22, 0x23, 0x24, 0x25, 0x26, 0x27}) << qint16(-8)
            << kProgramError;
    }

    void negativeLengthOfOtherFunction()
    {
        QFETCH(QByteArray, lead);
        QFETCH(qint16, length);
        QFETCH(qint32, number);
        const QByteArray frame = Function26Frame::encodeFrame(5, QByteArray(10, '\x01'), length);
        const QByteArray stream = lead + frame + bytes({0});
        ReceiveBuffer buffer(stream);
        const auto error = refusal([&] { m_parser.GetFunction(buffer); });
        QVERIFY2(error, "a negative length was accepted");
        QCOMPARE(error->number(), number);
        QVERIFY2(error->source().endsWith(QLatin1String("CorvaneParser.GetFunction")),
                 qPrintable(error->source()));
        QCOMPARE(buffer.toByteArray(), stream);
    }
};

CORVANE_TEST_SUITE(TestCorvaneParser)
#include "tst_corvaneparser.moc"

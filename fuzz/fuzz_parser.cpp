// Feeds arbitrary link bytes to the frame parser and to the capture decoder built on it.
// Whatever a power supply, a wrong baud rate or a noisy line delivers, the parser must
// neither crash nor read outside its buffer, and the records must not depend on how the
// link cut the bytes into arrivals. A disagreement stops the run like a crash.

#include "CaptureDecoder.h"

#include "platform/Clock.h"
#include "platform/ProgramError.h"
#include "protocol/CorvaneParser.h"
#include "protocol/CorvaneUSWSupport.h"
#include "protocol/FrameScanner.h"
#include "protocol/FrameSync.h"
#include "protocol/Function26Frame.h"

#include <QStringList>

#include <cstddef>
#include <cstdint>

namespace {

void check(bool condition)
{
    if (!condition)
        __builtin_trap();
}

class FixedClock : public Clock
{
public:
    QDateTime now() const override { return QDateTime(QDate(2026, 11, 14), QTime(22, 5, 9)); }
};

// Piece sizes that follow from the input itself, so that a run can be repeated.
class PieceSizes
{
public:
    explicit PieceSizes(QByteArrayView input)
    {
        m_state = 1469598103934665603ULL;
        for (const char c : input)
            m_state = (m_state ^ quint8(c)) * 1099511628211ULL;
    }

    quint64 next()
    {
        quint64 z = (m_state += 0x9E3779B97F4A7C15ULL);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
        return z ^ (z >> 31);
    }

private:
    quint64 m_state;
};

struct Outcome
{
    QStringList records;
    QStringList problems;

    bool operator==(const Outcome &) const = default;
};

// Decodes the input fed in pieces of at most maxPiece bytes (empty pieces included);
// maxPiece 0 feeds it whole.
Outcome decode(QByteArrayView input, MeasurementSystem system, PieceSizes *sizes, quint64 maxPiece)
{
    const FixedClock clock;
    Outcome outcome;
    CaptureDecoder decoder(
        system, clock, [&](const QString &line) { outcome.records << line; },
        [&](const QString &problem) { outcome.problems << problem; });
    if (!sizes) {
        decoder.feed(input);
    } else {
        qsizetype at = 0;
        while (at < input.size()) {
            const qsizetype piece =
                qMin(qsizetype(sizes->next() % (maxPiece + 1)), input.size() - at);
            decoder.feed(input.sliced(at, piece));
            at += piece;
        }
    }
    decoder.finish();
    check(decoder.recordCount() == outcome.records.size());
    check(decoder.problemCount() == outcome.problems.size());
    return outcome;
}

// Takes frames from the head of one buffer as a receiver does, checking what each call
// of the parser promises: the scanning core and the raising wrappers agree, a failure
// leaves the buffer untouched, a consumed count stays inside the buffer, and a record
// holds exactly the 116 data bytes of its frame.
void driveParser(QByteArrayView input, MeasurementSystem system)
{
    using FrameScanner::FrameStatus;
    const FixedClock clock;
    const CorvaneParser parser(system, clock);
    ReceiveBuffer buffer(input);
    ReceiveBuffer wrapped(input);
    CorvaneFUN26 record;
    for (;;) {
        const QByteArray before = buffer.toByteArray();
        const FrameStatus status = parser.next(buffer, record);
        const qsizetype consumed = before.size() - buffer.size();
        if (status == FrameStatus::BadEndMarker || status == FrameStatus::EndBeforeBuffer) {
            check(consumed == 0);
            try {
                parser.GetFunction(wrapped);
                check(false);
            } catch (const ProgramError &error) {
                const ProgramError expected = CorvaneParser::frameError(status);
                check(error.number() == expected.number());
                check(error.source() == expected.source());
            }
            check(wrapped.view() == before);
            check(FrameSync::dropBadFrameStart(buffer) >= 2);
            FrameSync::dropBadFrameStart(wrapped);
            continue;
        }
        // A frame is taken only with a byte behind it, so never the whole buffer.
        check(consumed >= 0 && (consumed == 0 || consumed < before.size()));
        const std::optional<CorvaneFUN26> taken = parser.GetFunction(wrapped);
        check(wrapped.view() == buffer.view());
        check(taken.has_value() == (status == FrameStatus::WeldRecord));
        if (status == FrameStatus::NeedMoreBytes) {
            check(consumed == 0);
            return;
        }
        check(consumed > 0);
        if (taken) {
            check(consumed >= 124);
            check(*taken == record);
            const QByteArray data = before.sliced(consumed - 118, CorvaneFUN26::kDataBytes);
            check(Function26Frame::encodeData(record, system) == data);
            check(record.AcquiredTime == clock.now());
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArrayView input(reinterpret_cast<const char *>(data), qsizetype(size));
    PieceSizes sizes(input);
    const MeasurementSystem system =
        sizes.next() % 2 == 0 ? MeasurementSystem::Metric : MeasurementSystem::US;

    driveParser(input, system);

    const Outcome whole = decode(input, system, nullptr, 0);
    check(decode(input, system, &sizes, 8) == whole);
    check(decode(input, system, &sizes, 300) == whole);
    return 0;
}

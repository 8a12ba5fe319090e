#include "CaptureDecoder.h"

#include "platform/ProgramError.h"
#include "protocol/CorvaneUSWSupport.h"
#include "protocol/FrameSync.h"

using namespace CorvaneUSWSupport;
using FrameScanner::FrameStatus;

CaptureDecoder::CaptureDecoder(MeasurementSystem system, const Clock &clock, LineSink records,
                               LineSink problems)
    : m_parser(system, clock)
    , m_records(std::move(records))
    , m_problems(std::move(problems))
{}

QString CaptureDecoder::headerLine() const
{
    return CorvaneFUN26::HeaderRecord(m_language);
}

void CaptureDecoder::feed(QByteArrayView piece)
{
    AppendBytes(m_buffer, piece);
    drain();
}

void CaptureDecoder::drain()
{
    for (;;) {
        const qsizetype lead = FrameSync::firstFrameStart(m_buffer.view());
        m_buffer.removeLeading(lead);
        m_offset += lead;
        const qsizetype before = m_buffer.size();
        const FrameStatus status = m_parser.next(m_buffer, m_record);
        m_offset += before - m_buffer.size();
        switch (status) {
        case FrameStatus::WeldRecord:
            ++m_recordCount;
            m_records(m_recordText.format(m_record));
            continue;
        case FrameStatus::BadEndMarker:
        case FrameStatus::EndBeforeBuffer: {
            const ProgramError error = CorvaneParser::frameError(status);
            report(QStringLiteral("bad frame at byte %1: %2 (%3)")
                       .arg(m_offset)
                       .arg(error.description(), error.source()));
            m_offset += FrameSync::dropBadFrameStart(m_buffer);
            continue;
        }
        case FrameStatus::NeedMoreBytes:
        case FrameStatus::OtherFunction:
            return;
        }
    }
}

void CaptureDecoder::finish()
{
    // One padding byte satisfies the parser's rule that a byte must follow the ETX.
    static constexpr char kPadding = 0;
    AppendBytes(m_buffer, QByteArrayView(&kPadding, 1));
    for (;;) {
        qint32 before = -1;
        while (ByteCount(m_buffer) > 1 && ByteCount(m_buffer) != before) {
            before = ByteCount(m_buffer);
            drain();
        }
        // What is left is either garbage or a frame start whose frame never completed.
        // A false start (a DLE STX in line noise with a large length) would hide the
        // welds behind it, so decoding goes on behind every start that is left.
        const qsizetype tail = ByteCount(m_buffer) - 1;
        if (tail <= 0 || FrameSync::firstFrameStart(m_buffer.view()) >= tail)
            break;
        report(QStringLiteral("incomplete frame at byte %1: %2 bytes left at the end of the input")
                   .arg(m_offset)
                   .arg(tail));
        m_offset += FrameSync::dropBadFrameStart(m_buffer);
    }
    m_buffer.clear();
}

void CaptureDecoder::report(const QString &problem)
{
    ++m_problemCount;
    m_problems(problem);
}

#include "CorvaneParser.h"

#include "CorvaneUSWSupport.h"

#include "platform/Clock.h"
#include "platform/ErrorPassing.h"

using namespace CorvaneUSWSupport;
using FrameScanner::FrameStatus;

namespace {

constexpr char kGetFunction[] = "CorvaneParser.GetFunction";
constexpr char kProcessBlock[] = "CorvaneParser.ProcessBlock";

// The failure of a bad frame as it leaves ProcessBlock.
ProgramError blockError(FrameStatus status)
{
    ProgramError error =
        status == FrameStatus::EndBeforeBuffer
            ? ProgramError::subscriptOutOfRange(QStringLiteral("CorvaneUSWSupport.GetByte"))
            : ProgramError::raised(QStringLiteral("Unable to resolve End of Transmission"),
                                   QLatin1String(kProcessBlock));
    error.addSource(QLatin1String(kProcessBlock));
    return error;
}

bool isBad(FrameStatus status)
{
    return status == FrameStatus::BadEndMarker || status == FrameStatus::EndBeforeBuffer;
}

} // namespace

CorvaneParser::CorvaneParser(MeasurementSystem system, const Clock &clock)
    : m_system(system)
    , m_scale(Function26Scale::forSystem(system))
    , m_clock(clock)
{}

FrameStatus CorvaneParser::next(ReceiveBuffer &buffer, CorvaneFUN26 &record) const
{
    const QByteArrayView bytes = buffer.view();
    const FrameScanner::FrameScan found = FrameScanner::scan(bytes);
    if (found.status == FrameStatus::WeldRecord) {
        decodeFunction26(reinterpret_cast<const uchar *>(bytes.data()) + found.frameStart + 6,
                         m_scale, m_clock.stamp(), record);
    }
    if (found.consumed != 0)
        buffer.removeLeading(found.consumed);
    return found.status;
}

ProgramError CorvaneParser::frameError(FrameStatus status)
{
    ProgramError error = blockError(status);
    error.addSource(QLatin1String(kGetFunction));
    return error;
}

std::optional<CorvaneFUN26> CorvaneParser::GetFunction(ReceiveBuffer &buffer) const
{
    return passOn(kGetFunction, [&]() -> std::optional<CorvaneFUN26> {
        if (ByteCount(buffer) == 0)
            return std::nullopt;
        std::optional<CorvaneFUN26> record;
        qsizetype consumed = 0;
        ProcessBlock(buffer, record, consumed);
        if (consumed != 0)
            RemoveLeadingBytes(buffer, consumed);
        return record;
    });
}

void CorvaneParser::ProcessBlock(const ReceiveBuffer &buffer, std::optional<CorvaneFUN26> &function,
                                 qsizetype &consumed) const
{
    consumed = 0;
    const QByteArrayView bytes = buffer.view();
    const FrameScanner::FrameScan found = FrameScanner::scan(bytes);
    if (isBad(found.status))
        throw blockError(found.status);
    if (found.status == FrameStatus::WeldRecord)
        function = CreateFunction26(bytes, found.frameStart + 6, m_system, m_clock.stamp());
    consumed = found.consumed;
}

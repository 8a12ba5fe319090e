#include "CorvaneParser.h"

#include "CorvaneUSWSupport.h"

#include "platform/Clock.h"
#include "platform/ErrorPassing.h"

using namespace CorvaneUSWSupport;

CorvaneParser::CorvaneParser(MeasurementSystem system, const Clock &clock)
    : m_system(system)
    , m_clock(clock)
{
}

std::optional<CorvaneFUN26> CorvaneParser::GetFunction(ReceiveBuffer &buffer) const
{
    return passOn("CorvaneParser.GetFunction", [&]() -> std::optional<CorvaneFUN26> {
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

void CorvaneParser::ProcessBlock(const ReceiveBuffer &buffer,
                                 std::optional<CorvaneFUN26> &function,
                                 qsizetype &consumed) const
{
    passOn("CorvaneParser.ProcessBlock", [&] {
        consumed = 0;
        const QByteArrayView bytes = buffer.view();
        const qsizetype last = bytes.size() - 1;
        qsizetype i = 0;
        qint16 functionNumber = 0;
        qsizetype length = 0;
        for (;; ++i) {
            if (last - i < 6)
                return;
            if (GetByteAt(bytes, i) != DLE || GetByteAt(bytes, i + 1) != STX)
                continue;
            functionNumber = GetIntegerAt(bytes, i + 4);
            length = functionNumber == kWeldRecordFunction ? kWeldRecordLength
                                                           : GetIntegerAt(bytes, i + 2);
            // Wait for one byte beyond the ETX before the frame counts as complete.
            if (last <= i + length + 5)
                return;
            if (GetByteAt(bytes, i + length + 4) == DLE && GetByteAt(bytes, i + length + 5) == ETX)
                break;
            throw ProgramError::raised(QStringLiteral("Unable to resolve End of Transmission"),
                                       QStringLiteral("CorvaneParser.ProcessBlock"));
        }
        if (functionNumber == kWeldRecordFunction)
            function = CreateFunction26(bytes, i + 6, m_system, m_clock.now());
        consumed = i + length + 6;
    });
}

#pragma once

#include "CorvaneFUN26.h"
#include "FrameScanner.h"
#include "ReceiveBuffer.h"

#include "platform/MeasurementSystem.h"
#include "platform/ProgramError.h"

#include <optional>

class Clock;

// Cuts one frame at a time from the head of a receive buffer (see FrameScanner for the
// framing). Function 26 frames are decoded into a weld record stamped from the clock;
// frames of other functions are skipped whole. The parser keeps no state: the buffer
// carries everything from one arrival to the next.
//
// next() is the receiving side's way through: it returns what it found and never
// throws. GetFunction and ProcessBlock wrap it for callers that want a bad end marker
// raised as "Unable to resolve End of Transmission".
class CorvaneParser
{
public:
    static constexpr qint16 kWeldRecordFunction = FrameScanner::kWeldRecordFunction;
    static constexpr qint16 kWeldRecordLength = FrameScanner::kWeldRecordLength;
    static constexpr quint8 DLE = FrameScanner::DLE;
    static constexpr quint8 STX = FrameScanner::STX;
    static constexpr quint8 ETX = FrameScanner::ETX;

    CorvaneParser(MeasurementSystem system, const Clock &clock);

    // Takes the first complete frame from the buffer together with every byte in front
    // of it, decoding a weld record into `record`. A bad frame leaves the buffer as it
    // is, as does a frame that is not complete yet.
    FrameScanner::FrameStatus next(ReceiveBuffer &buffer, CorvaneFUN26 &record) const;

    // The failure that GetFunction raises for a bad frame status, as it leaves it.
    static ProgramError frameError(FrameScanner::FrameStatus status);

    // The record of the first complete Function 26 frame, removing it and every byte in
    // front of it from the buffer; nothing when no complete frame is there, or when the
    // frame consumed was of another function. A frame whose end marker is wrong fails
    // with "Unable to resolve End of Transmission" and leaves the buffer unchanged.
    std::optional<CorvaneFUN26> GetFunction(ReceiveBuffer &buffer) const;

    // Finds the first complete frame. consumed is the count of bytes up to and including
    // it, 0 when there is none; function is set only for Function 26.
    void ProcessBlock(const ReceiveBuffer &buffer, std::optional<CorvaneFUN26> &function,
                      qsizetype &consumed) const;

private:
    MeasurementSystem m_system;
    Function26Scale m_scale;
    const Clock &m_clock;
};

#pragma once

#include "CorvaneFUN26.h"
#include "ReceiveBuffer.h"

#include "platform/MeasurementSystem.h"

#include <optional>

class Clock;

// Cuts one frame at a time from the head of a receive buffer:
//
//   DLE STX | length L (16 bit) | function (16 bit) | data (L - 2 bytes) | DLE ETX
//
// Function 26 frames are always 124 bytes (their length field is not read) and are
// decoded into a weld record; frames of other functions are skipped whole. A frame is
// taken only once at least one more byte has arrived behind its ETX. The parser keeps
// no state: the buffer carries everything from one arrival to the next.
class CorvaneParser
{
public:
    static constexpr qint16 kWeldRecordFunction = 26;
    static constexpr qint16 kWeldRecordLength = 118;
    static constexpr quint8 DLE = 0x10;
    static constexpr quint8 STX = 0x02;
    static constexpr quint8 ETX = 0x03;

    CorvaneParser(MeasurementSystem system, const Clock &clock);

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
    const Clock &m_clock;
};

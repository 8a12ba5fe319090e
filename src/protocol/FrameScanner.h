#pragma once

#include <QByteArrayView>

// Finds the first complete frame in received bytes without throwing or allocating, so a
// noisy line costs no more than a clean one:
//
//   DLE STX | length L (16 bit) | function (16 bit) | data (L - 2 bytes) | DLE ETX
//
// Function 26 frames are always 124 bytes (their length field is not read). A frame
// counts as complete only once at least one more byte has arrived behind its ETX.
namespace FrameScanner {

inline constexpr quint8 DLE = 0x10;
inline constexpr quint8 STX = 0x02;
inline constexpr quint8 ETX = 0x03;
inline constexpr qint16 kWeldRecordFunction = 26;
inline constexpr qint16 kWeldRecordLength = 118;

enum class FrameStatus {
    NeedMoreBytes,   // no complete frame yet; nothing is consumed
    WeldRecord,      // a Function 26 frame; its data start at frameStart + 6
    OtherFunction,   // a complete frame of another function, to be skipped whole
    BadEndMarker,    // the frame at frameStart does not end in DLE ETX
    EndBeforeBuffer, // a negative length puts the end marker in front of the bytes
};

struct FrameScan
{
    FrameStatus status = FrameStatus::NeedMoreBytes;
    // Offset of the frame's DLE (for a complete or bad frame).
    qsizetype frameStart = 0;
    // Bytes up to and including the frame, those skipped in front of it included; 0
    // unless the status is WeldRecord or OtherFunction.
    qsizetype consumed = 0;
};

FrameScan scan(QByteArrayView bytes) noexcept;

} // namespace FrameScanner

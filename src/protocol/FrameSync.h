#pragma once

#include "ReceiveBuffer.h"

// How a receiver keeps its buffer moving when the link delivers garbage or a corrupted
// frame. Neither changes which records come out: the parser would drop the same bytes
// with the next frame it consumes.
namespace FrameSync {

// Index of the first DLE STX pair (or of a DLE as the very last byte, which may be the
// start of one); the buffer size when there is none.
qsizetype firstFrameStart(QByteArrayView bytes);

// Drops the bytes in front of the first possible frame start, so a link that sends
// only garbage (a wrong baud rate, another device) can neither grow the buffer without
// bound nor make each arrival slower.
void discardUnframedLead(ReceiveBuffer &buffer);

// After the parser found a bad end marker: drops everything up to and including the
// bad frame's DLE STX and keeps the rest, so that one corrupted frame cannot block the
// link. Returns the number of bytes dropped.
qsizetype dropBadFrameStart(ReceiveBuffer &buffer);

} // namespace FrameSync

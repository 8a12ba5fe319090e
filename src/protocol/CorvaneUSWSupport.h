#pragma once

#include "ReceiveBuffer.h"

#include <QByteArrayView>

// Readers of the big-endian two's-complement integers of the welder link and the
// operations on a receive buffer. A read that would pass the end of the buffer (or
// start before it) fails with "Subscript out of range"; nothing is ever read outside.
namespace CorvaneUSWSupport {

quint8 GetByte(QByteArrayView buffer, qsizetype &pos, bool advance = true);
qint16 GetInteger(QByteArrayView buffer, qsizetype &pos, bool advance = true);
qint32 GetLong(QByteArrayView buffer, qsizetype &pos, bool advance = true);

void AppendBytes(ReceiveBuffer &buffer, QByteArrayView bytes);
void RemoveLeadingBytes(ReceiveBuffer &buffer, qsizetype n);
qint32 ByteCount(const ReceiveBuffer &buffer);

} // namespace CorvaneUSWSupport

#include "CorvaneUSWSupport.h"

#include "platform/ProgramError.h"

#include <limits>

namespace CorvaneUSWSupport {

namespace {

// The unsigned bytes at pos .. pos + width - 1, after checking that they all exist.
const uchar *bytesAt(QByteArrayView buffer, qsizetype pos, qsizetype width, const char *reader)
{
    if (pos < 0 || pos > buffer.size() - width)
        throw ProgramError::subscriptOutOfRange(QLatin1String(reader));
    return reinterpret_cast<const uchar *>(buffer.data()) + pos;
}

} // namespace

quint8 GetByte(QByteArrayView buffer, qsizetype &pos, bool advance)
{
    const uchar *b = bytesAt(buffer, pos, 1, "CorvaneUSWSupport.GetByte");
    if (advance)
        pos += 1;
    return b[0];
}

qint16 GetInteger(QByteArrayView buffer, qsizetype &pos, bool advance)
{
    const uchar *b = bytesAt(buffer, pos, 2, "CorvaneUSWSupport.GetInteger");
    if (advance)
        pos += 2;
    return qint16(quint16((b[0] << 8) | b[1]));
}

qint32 GetLong(QByteArrayView buffer, qsizetype &pos, bool advance)
{
    const uchar *b = bytesAt(buffer, pos, 4, "CorvaneUSWSupport.GetLong");
    if (advance)
        pos += 4;
    return qint32((quint32(b[0]) << 24) | (quint32(b[1]) << 16) | (quint32(b[2]) << 8)
                  | quint32(b[3]));
}

void AppendBytes(ReceiveBuffer &buffer, QByteArrayView bytes)
{
    buffer.append(bytes);
}

void RemoveLeadingBytes(ReceiveBuffer &buffer, qsizetype n)
{
    buffer.removeLeading(n);
}

qint32 ByteCount(const ReceiveBuffer &buffer)
{
    if (buffer.size() > std::numeric_limits<qint32>::max())
        throw ProgramError::overflow(QStringLiteral("CorvaneUSWSupport.ByteCount"));
    return qint32(buffer.size());
}

} // namespace CorvaneUSWSupport

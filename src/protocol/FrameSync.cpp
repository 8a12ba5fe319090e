#include "FrameSync.h"

#include "CorvaneParser.h"

namespace FrameSync {

qsizetype firstFrameStart(QByteArrayView bytes)
{
    const qsizetype size = bytes.size();
    for (qsizetype i = 0; i < size; ++i) {
        if (quint8(bytes[i]) != CorvaneParser::DLE)
            continue;
        if (i + 1 == size || quint8(bytes[i + 1]) == CorvaneParser::STX)
            return i;
    }
    return size;
}

void discardUnframedLead(ReceiveBuffer &buffer)
{
    buffer.removeLeading(firstFrameStart(buffer.view()));
}

qsizetype dropBadFrameStart(ReceiveBuffer &buffer)
{
    const qsizetype start = firstFrameStart(buffer.view());
    const qsizetype dropped = qMin(start + 2, buffer.size());
    buffer.removeLeading(dropped);
    return dropped;
}

} // namespace FrameSync

#include "FrameSync.h"

#include "FrameScanner.h"

#include <cstring>

namespace FrameSync {

qsizetype firstFrameStart(QByteArrayView bytes)
{
    const qsizetype size = bytes.size();
    const char *const begin = bytes.data();
    for (qsizetype i = 0; i < size; ++i) {
        const void *dle = std::memchr(begin + i, FrameScanner::DLE, size_t(size - i));
        if (!dle)
            break;
        i = static_cast<const char *>(dle) - begin;
        if (i + 1 == size || quint8(begin[i + 1]) == FrameScanner::STX)
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

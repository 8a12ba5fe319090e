#include "FrameScanner.h"

#include <cstring>

namespace FrameScanner {

namespace {

qint16 integerAt(const uchar *bytes, qsizetype pos)
{
    return qint16(quint16((bytes[pos] << 8) | bytes[pos + 1]));
}

} // namespace

FrameScan scan(QByteArrayView view) noexcept
{
    const auto *bytes = reinterpret_cast<const uchar *>(view.data());
    const qsizetype last = view.size() - 1;
    qsizetype i = 0;
    for (;;) {
        if (last - i < 6)
            return {};
        // Jump to the next DLE: line noise between frames is passed over at memory speed.
        if (bytes[i] != DLE) {
            const void *dle = std::memchr(bytes + i, DLE, size_t(last - 5 - i));
            if (!dle)
                return {};
            i = static_cast<const uchar *>(dle) - bytes;
        }
        if (bytes[i + 1] != STX) {
            ++i;
            continue;
        }
        const qint16 function = integerAt(bytes, i + 4);
        const qsizetype length =
            function == kWeldRecordFunction ? kWeldRecordLength : integerAt(bytes, i + 2);
        // Wait for one byte beyond the ETX before the frame counts as complete.
        if (last <= i + length + 5)
            return {};
        const qsizetype end = i + length + 4;
        if (end < 0)
            return {FrameStatus::EndBeforeBuffer, i, 0};
        if (bytes[end] != DLE || bytes[end + 1] != ETX)
            return {FrameStatus::BadEndMarker, i, 0};
        const FrameStatus status =
            function == kWeldRecordFunction ? FrameStatus::WeldRecord : FrameStatus::OtherFunction;
        return {status, i, end + 2};
    }
}

} // namespace FrameScanner

#include "CaptureReplay.h"

#include "protocol/CorvaneParser.h"

#include <QtEndian>

namespace {

qint16 integerAt(QByteArrayView bytes, qsizetype pos)
{
    return qFromBigEndian<qint16>(bytes.data() + pos);
}

} // namespace

CaptureReplay::CaptureReplay(const QByteArray &capture)
    : m_steps(steps(capture))
{}

std::optional<QByteArray> CaptureReplay::next()
{
    if (m_next >= m_steps.size())
        return std::nullopt;
    return m_steps.at(m_next++);
}

qsizetype CaptureReplay::frameLengthAt(QByteArrayView bytes, qsizetype pos)
{
    constexpr qsizetype kHeader = 6; // DLE STX, length, function
    if (pos + kHeader > bytes.size() || quint8(bytes[pos]) != CorvaneParser::DLE ||
        quint8(bytes[pos + 1]) != CorvaneParser::STX)
        return 0;
    // As the receiver reads it: a weld record is always 118 long, whatever its length
    // field says; any other function carries its own length.
    const qint16 function = integerAt(bytes, pos + 4);
    const qsizetype length = function == CorvaneParser::kWeldRecordFunction
                                 ? CorvaneParser::kWeldRecordLength
                                 : integerAt(bytes, pos + 2);
    if (length < 2 || pos + length + kHeader > bytes.size())
        return 0;
    if (quint8(bytes[pos + length + 4]) != CorvaneParser::DLE ||
        quint8(bytes[pos + length + 5]) != CorvaneParser::ETX)
        return 0;
    return length + kHeader;
}

QList<QByteArray> CaptureReplay::steps(const QByteArray &capture)
{
    QList<qsizetype> starts;
    for (qsizetype pos = 0; pos < capture.size();) {
        const qsizetype length = frameLengthAt(capture, pos);
        if (length == 0) {
            ++pos;
            continue;
        }
        starts.append(pos);
        pos += length;
    }
    if (starts.isEmpty())
        return capture.isEmpty() ? QList<QByteArray>{} : QList<QByteArray>{capture};

    // Cut in front of every frame but the first: leading bytes travel with the first
    // frame, the bytes behind a frame with that frame.
    starts.first() = 0;
    starts.append(capture.size());
    QList<QByteArray> steps;
    steps.reserve(starts.size() - 1);
    for (qsizetype i = 0; i + 1 < starts.size(); ++i)
        steps.append(capture.sliced(starts.at(i), starts.at(i + 1) - starts.at(i)));
    return steps;
}

PacedCapture::PacedCapture(const QByteArray &capture, qint64 bytesPerSecond)
    : m_capture(capture)
    , m_bytesPerStep(double(bytesPerSecond) * kStepMs / 1000.0)
{}

std::optional<QByteArray> PacedCapture::next()
{
    if (m_sent >= m_capture.size())
        return std::nullopt;
    m_due += m_bytesPerStep;
    const qsizetype now = qMin(qsizetype(m_due), m_capture.size() - m_sent);
    m_due -= double(now);
    const QByteArray piece = m_capture.sliced(m_sent, now);
    m_sent += now;
    return piece;
}

#include "GeneratedWelds.h"

#include "protocol/CorvaneParser.h"
#include "protocol/Function26Frame.h"

namespace {

// Any byte value: the receiver takes the frame before it when it arrives.
constexpr char kTrailingByte = 0x00;

} // namespace

GeneratedWelds::GeneratedWelds(const WeldGenerator &generator, MeasurementSystem system,
                               int garbageBytes, quint32 garbageSeed)
    : m_generator(generator)
    , m_system(system)
    , m_garbageBytes(garbageBytes)
    , m_noise(garbageSeed)
{}

std::optional<QByteArray> GeneratedWelds::next()
{
    QByteArray bytes = Function26Frame::encode(m_generator.next(), m_system);
    bytes.reserve(bytes.size() + 1 + m_garbageBytes);
    bytes.append(kTrailingByte);
    for (int i = 0; i < m_garbageBytes; ++i) {
        // 255 values, DLE left out.
        quint32 value = m_noise.bounded(255u);
        if (value >= CorvaneParser::DLE)
            ++value;
        bytes.append(char(value));
    }
    return bytes;
}

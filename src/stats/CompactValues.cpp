#include "CompactValues.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace {

// Codes beyond 2^53 are no longer exact whole numbers in a double.
constexpr double kLargestExactCode = 9007199254740992.0;

int widthFor(quint64 range)
{
    if (range <= 0xFF)
        return 1;
    if (range <= 0xFFFF)
        return 2;
    if (range <= 0xFFFFFFFFull)
        return 4;
    return 8;
}

} // namespace

CompactValues::CompactValues(double step)
    : m_step(std::isfinite(step) && step > 0 ? step : 0)
{}

void CompactValues::append(double value)
{
    qint64 code = 0;
    if (!encode(value, &code)) {
        dropStep();
        encode(value, &code);
    }
    if (m_open.empty())
        m_open.reserve(kBlockValues);
    m_open.push_back(code);
    if (m_open.size() == size_t(kBlockValues))
        seal();
}

void CompactValues::clear()
{
    m_blocks.clear();
    std::vector<qint64>().swap(m_open);
    m_sealedValues = 0;
}

double CompactValues::at(qint64 index) const
{
    if (index >= m_sealedValues)
        return decode(m_open[size_t(index - m_sealedValues)]);
    const Block &block = m_blocks[size_t(index / kBlockValues)];
    return decode(block.code(int(index % kBlockValues)));
}

qsizetype CompactValues::storedBytes() const
{
    qsizetype bytes = qsizetype(m_open.capacity() * sizeof(qint64));
    for (const Block &block : m_blocks)
        bytes += qsizetype(sizeof(Block) + block.bytes.capacity());
    return bytes;
}

bool CompactValues::encode(double value, qint64 *code) const
{
    if (m_step == 0) {
        *code = std::bit_cast<qint64>(value);
        return true;
    }
    const double whole = std::round(value / m_step);
    if (!(std::fabs(whole) < kLargestExactCode) || whole * m_step != value)
        return false;
    *code = qint64(whole);
    return true;
}

double CompactValues::decode(qint64 code) const
{
    return m_step == 0 ? std::bit_cast<double>(code) : double(code) * m_step;
}

void CompactValues::seal()
{
    m_blocks.push_back(Block::pack(m_open));
    m_sealedValues += kBlockValues;
    m_open.clear();
}

void CompactValues::dropStep()
{
    std::vector<double> values;
    values.reserve(size_t(size()));
    forEach([&values](double value) { values.push_back(value); });
    clear();
    m_step = 0;
    for (const double value : values)
        append(value);
}

CompactValues::Block CompactValues::Block::pack(const std::vector<qint64> &codes)
{
    const auto [lowest, highest] = std::minmax_element(codes.begin(), codes.end());
    Block block;
    block.base = *lowest;
    block.width = widthFor(quint64(*highest) - quint64(*lowest));
    block.bytes.resize(codes.size() * size_t(block.width));
    quint8 *out = block.bytes.data();
    for (const qint64 code : codes) {
        quint64 offset = quint64(code) - quint64(block.base);
        for (int byte = 0; byte < block.width; ++byte, offset >>= 8)
            *out++ = quint8(offset);
    }
    return block;
}

qint64 CompactValues::Block::code(int index) const
{
    const quint8 *in = bytes.data() + size_t(index) * size_t(width);
    quint64 offset = 0;
    for (int byte = width - 1; byte >= 0; --byte)
        offset = (offset << 8) | in[byte];
    return qint64(quint64(base) + offset);
}

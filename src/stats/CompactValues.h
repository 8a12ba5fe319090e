#pragma once

#include <QtGlobal>

#include <deque>
#include <vector>

// One characteristic's values in the form the power supply sent them. A weld record
// carries every figure as a whole number of a fixed step (milliseconds, tenths of a
// joule, ten-thousandths of an inch), so a value is kept as that whole number, its code,
// and given back as code × step: the very multiplication the decoder made, so the value
// is bit for bit the one that arrived. Codes are packed in blocks of kBlockValues, each
// block as offsets from its smallest code in 1, 2, 4 or 8 bytes: the welds of one shift
// scatter over a narrow range, so most characteristics need one or two bytes a weld.
//
// A value that is not a whole multiple of the step (simulated values, a store without a
// step) turns the whole store into one that keeps the bit patterns of the values.
class CompactValues
{
public:
    static constexpr int kBlockValues = 1024;

    // step 0: no step known, the values are kept as they come.
    explicit CompactValues(double step = 0);

    void append(double value);
    void clear();

    qint64 size() const { return m_sealedValues + qint64(m_open.size()); }
    // The value at a 0-based position, 0 <= index < size().
    double at(qint64 index) const;
    double step() const { return m_step; }

    // Sealed blocks that can be taken from the front, oldest first.
    qint64 sealedValues() const { return m_sealedValues; }
    // Removes the oldest sealed block, handing each of its values to take(value).
    template <typename Take> void takeOldestBlock(Take take)
    {
        const Block &block = m_blocks.front();
        for (int i = 0; i < kBlockValues; ++i)
            take(decode(block.code(i)));
        m_sealedValues -= kBlockValues;
        m_blocks.pop_front();
    }

    // Calls visit(value) for every value, oldest first.
    template <typename Visit> void forEach(Visit visit) const
    {
        for (const Block &block : m_blocks) {
            for (int i = 0; i < kBlockValues; ++i)
                visit(decode(block.code(i)));
        }
        for (const qint64 code : m_open)
            visit(decode(code));
    }

    // Bytes held for the values, blocks and the open block's room included.
    qsizetype storedBytes() const;

private:
    struct Block
    {
        qint64 base = 0;
        int width = 8;
        std::vector<quint8> bytes;

        static Block pack(const std::vector<qint64> &codes);
        qint64 code(int index) const;
    };

    bool encode(double value, qint64 *code) const;
    double decode(qint64 code) const;
    void seal();
    void dropStep();

    double m_step = 0;
    std::deque<Block> m_blocks;
    std::vector<qint64> m_open;
    qint64 m_sealedValues = 0;
};

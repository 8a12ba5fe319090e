#pragma once

#include <QByteArray>
#include <QByteArrayView>

// The bytes received from a power supply that are not yet consumed. The link appends
// at the end, the frame parser consumes from the front. Consumed bytes are skipped by
// a read offset and compacted away only once they outweigh the live bytes, so draining
// a burst of many queued frames costs time in proportion to its size.
class ReceiveBuffer
{
public:
    ReceiveBuffer() = default;
    explicit ReceiveBuffer(QByteArrayView bytes);

    qsizetype size() const { return m_bytes.size() - m_head; }
    bool isEmpty() const { return size() == 0; }
    QByteArrayView view() const { return QByteArrayView(m_bytes).sliced(m_head); }
    QByteArray toByteArray() const { return view().toByteArray(); }

    void append(QByteArrayView bytes);
    // Drops the first n bytes; n at or beyond the size leaves the buffer empty.
    void removeLeading(qsizetype n);
    void clear();

    // Bytes held in memory, consumed ones not yet compacted included.
    qsizetype storedBytes() const { return m_bytes.capacity(); }

private:
    static constexpr qsizetype kCompactionThreshold = 4096;

    QByteArray m_bytes;
    qsizetype m_head = 0;
};

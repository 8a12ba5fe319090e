#include "ReceiveBuffer.h"

ReceiveBuffer::ReceiveBuffer(QByteArrayView bytes)
    : m_bytes(bytes.toByteArray())
{
}

void ReceiveBuffer::append(QByteArrayView bytes)
{
    if (bytes.isEmpty())
        return;
    if (m_head > 0 && m_bytes.size() + bytes.size() > m_bytes.capacity()) {
        m_bytes.remove(0, m_head);
        m_head = 0;
    }
    m_bytes.append(bytes.data(), bytes.size());
}

void ReceiveBuffer::removeLeading(qsizetype n)
{
    if (n >= size()) {
        clear();
        return;
    }
    if (n <= 0)
        return;
    m_head += n;
    if (m_head >= kCompactionThreshold && m_head * 2 >= m_bytes.size()) {
        m_bytes.remove(0, m_head);
        m_head = 0;
    }
}

void ReceiveBuffer::clear()
{
    m_bytes.clear();
    m_head = 0;
}

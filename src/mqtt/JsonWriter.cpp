#include "JsonWriter.h"

#include <QLocale>

JsonWriter::JsonWriter()
{
    m_bytes.reserve(2048);
    m_bytes += '{';
}

void JsonWriter::field(const char *name, int value)
{
    key(name);
    m_bytes += QByteArray::number(value);
}

void JsonWriter::field(const char *name, double value)
{
    key(name);
    m_bytes += QByteArray::number(value, 'g', QLocale::FloatingPointShortest);
}

void JsonWriter::field(const char *name, const QString &value)
{
    key(name);
    text(value);
}

void JsonWriter::field(const char *name, const QStringList &values)
{
    key(name);
    m_bytes += '[';
    for (qsizetype i = 0; i < values.size(); ++i) {
        if (i > 0)
            m_bytes += ',';
        text(values[i]);
    }
    m_bytes += ']';
}

void JsonWriter::beginObject(const char *name)
{
    key(name);
    m_bytes += '{';
    m_first = true;
}

void JsonWriter::endObject()
{
    m_bytes += '}';
    m_first = false;
}

QByteArray JsonWriter::take()
{
    m_bytes += '}';
    return std::move(m_bytes);
}

void JsonWriter::key(const char *name)
{
    if (!m_first)
        m_bytes += ',';
    m_first = false;
    m_bytes += '"';
    m_bytes += name;
    m_bytes += "\":";
}

void JsonWriter::text(const QString &value)
{
    static const char kHex[] = "0123456789abcdef";
    m_bytes += '"';
    for (const char c : value.toUtf8()) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            m_bytes += '\\';
            m_bytes += c;
        } else if (byte < 0x20) {
            m_bytes += "\\u00";
            m_bytes += kHex[byte >> 4];
            m_bytes += kHex[byte & 0xf];
        } else {
            m_bytes += c;
        }
    }
    m_bytes += '"';
}

#include "JsonWriter.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

JsonWriter::JsonWriter()
{
    m_bytes += '{';
}

void JsonWriter::field(const char *name, int value)
{
    key(name);
    number(value);
}

void JsonWriter::field(const char *name, double value)
{
    key(name);
    // JSON has no infinity and no NaN.
    if (!std::isfinite(value)) {
        append("null");
        return;
    }
    number(value);
}

void JsonWriter::field(const char *name, bool value)
{
    key(name);
    append(value ? "true" : "false");
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

void JsonWriter::beginObject()
{
    separate();
    m_bytes += '{';
    m_first = true;
}

void JsonWriter::endObject()
{
    m_bytes += '}';
    m_first = false;
}

void JsonWriter::beginArray(const char *name)
{
    key(name);
    m_bytes += '[';
    m_first = true;
}

void JsonWriter::endArray()
{
    m_bytes += ']';
    m_first = false;
}

QByteArray JsonWriter::take()
{
    m_bytes += '}';
    return QByteArray(m_bytes.constData(), m_bytes.size());
}

void JsonWriter::append(const char *text)
{
    m_bytes.append(text, qsizetype(std::strlen(text)));
}

void JsonWriter::separate()
{
    if (!m_first)
        m_bytes += ',';
    m_first = false;
}

void JsonWriter::key(const char *name)
{
    separate();
    m_bytes += '"';
    append(name);
    m_bytes += '"';
    m_bytes += ':';
}

template <typename Number> void JsonWriter::number(Number value)
{
    // Long enough for the shortest form of any double.
    char digits[32];
    const std::to_chars_result end = std::to_chars(std::begin(digits), std::end(digits), value);
    m_bytes.append(digits, end.ptr - digits);
}

void JsonWriter::text(const QString &value)
{
    m_bytes += '"';
    // Names and numbers are nearly always ASCII: those go over without an encoding pass.
    const bool ascii = std::all_of(value.cbegin(), value.cend(), [](QChar c) {
        return c.unicode() >= 0x20 && c.unicode() < 0x80 && c != u'"' && c != u'\\';
    });
    if (ascii) {
        const qsizetype at = m_bytes.size();
        m_bytes.resize(at + value.size());
        char *out = m_bytes.data() + at;
        for (const QChar c : value)
            *out++ = char(c.unicode());
    } else {
        escaped(value.toUtf8());
    }
    m_bytes += '"';
}

void JsonWriter::escaped(const QByteArray &utf8)
{
    static const char kHex[] = "0123456789abcdef";
    for (const char c : utf8) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            m_bytes += '\\';
            m_bytes += c;
        } else if (byte < 0x20) {
            append("\\u00");
            m_bytes += kHex[byte >> 4];
            m_bytes += kHex[byte & 0xf];
        } else {
            m_bytes += c;
        }
    }
}

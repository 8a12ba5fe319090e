#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVarLengthArray>

// Writes one compact JSON object straight into bytes, for messages that go out by the
// thousand per second: the generic JSON document classes build a tree and sort its keys
// first, which costs several times more than the message itself. Keys are the caller's
// ASCII literals; text values are escaped; doubles are written in the shortest form that
// reads back to the same value, and as null where JSON has no number for them.
class JsonWriter
{
public:
    JsonWriter();

    void field(const char *key, int value);
    void field(const char *key, double value);
    void field(const char *key, bool value);
    void field(const char *key, const QString &value);
    void field(const char *key, const QStringList &values);
    void beginObject(const char *key);
    // An object as the next element of an array.
    void beginObject();
    void endObject();
    void beginArray(const char *key);
    void endArray();

    // The finished object.
    QByteArray take();

private:
    void append(const char *text);
    void separate();
    void key(const char *name);
    template <typename Number> void number(Number value);
    void text(const QString &value);
    void escaped(const QByteArray &utf8);

    // A weld message fits on the stack; the finished one is copied out once.
    QVarLengthArray<char, 2048> m_bytes;
    bool m_first = true;
};

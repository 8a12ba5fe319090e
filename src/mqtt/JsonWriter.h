#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// Writes one compact JSON object straight into bytes, for messages that go out by the
// thousand per second: the generic JSON document classes build a tree and sort its keys
// first, which costs several times more than the message itself. Keys are the caller's
// ASCII literals; text values are escaped; doubles are written in the shortest form that
// reads back to the same value.
class JsonWriter
{
public:
    JsonWriter();

    void field(const char *key, int value);
    void field(const char *key, double value);
    void field(const char *key, const QString &value);
    void field(const char *key, const QStringList &values);
    void beginObject(const char *key);
    void endObject();

    // The finished object.
    QByteArray take();

private:
    void key(const char *name);
    void text(const QString &value);

    QByteArray m_bytes;
    bool m_first = true;
};

#pragma once

#include "WeldGenerator.h"

#include "protocol/Function26Frame.h"

#include <QByteArray>

// The frames of `count` simulated welds back to back, each followed by the byte that
// lets the parser take it.
inline QByteArray weldStream(WeldGenerator &generator, int count, MeasurementSystem system)
{
    QByteArray bytes;
    bytes.reserve(qsizetype(count) * 125);
    for (int i = 0; i < count; ++i)
        bytes += Function26Frame::encode(generator.next(), system) + '\0';
    return bytes;
}

#pragma once

#include "CorvaneFUN26.h"

#include <QByteArray>

#include <optional>

// The sending side of the welder link, as a power supply frames its records. The
// simulator plays power supplies with it, and tests and benchmarks build their streams.
namespace Function26Frame {

// A frame of any function: DLE STX, length, function, data, DLE ETX. The length field
// holds data size + 2 unless lengthField overrides it.
QByteArray encodeFrame(qint16 function, QByteArrayView data,
                       std::optional<qint16> lengthField = std::nullopt);

// The 116 data bytes of a weld record given in display units of the unit system: each
// value is divided by its scale factor and rounded to the nearest raw integer, clamped
// to the width of its wire field.
QByteArray encodeData(const CorvaneFUN26 &record, MeasurementSystem system);

// A complete 124-byte Function 26 frame.
QByteArray encode(const CorvaneFUN26 &record, MeasurementSystem system);

} // namespace Function26Frame

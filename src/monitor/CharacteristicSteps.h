#pragma once

#include "platform/MeasurementSystem.h"

#include <QtGlobal>

// The whole step in which a weld record carries monitored characteristic `number` (1 to 8)
// in the given unit system: what one raw unit of the wire is worth after the decoder's
// scaling, 0.001 s for the weld time, a tenth of a joule for the energy. 0 for other
// numbers.
double characteristicStep(qint32 number, MeasurementSystem system);

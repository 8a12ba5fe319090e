#pragma once

#include "platform/MeasurementSystem.h"
#include "protocol/CorvaneFUN26.h"

#include <QByteArray>

// Weld records and link streams that tests build their cases from.
namespace SampleWelds {

// A record whose every field has a distinct value that survives encoding in the given
// unit system; cycle is its cycle count.
CorvaneFUN26 record(qint32 cycle, MeasurementSystem system = MeasurementSystem::Metric);

// The frames of records 1 .. count, each followed by one trailing byte.
QByteArray stream(int count, MeasurementSystem system = MeasurementSystem::Metric);

} // namespace SampleWelds

// How QCOMPARE shows a weld record that differs: its data-log line in C number format.
char *toString(const CorvaneFUN26 &record);

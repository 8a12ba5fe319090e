#pragma once

#include "platform/MeasurementSystem.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

struct CorvaneFUN26;
class qlxLanguage;

// The JSON bodies of the messages a monitor publishes: UTF-8, numbers as numbers, times
// in ISO 8601 with the zone offset. Alarm names and the weld-mode description use the
// language they are given; the publisher passes the built-in texts, so that consumers on
// the bus read the same words from every workstation.
namespace MqttPayloads {

// What a weld message says besides the record.
struct WeldContext
{
    QString configuration;
    QString part;
    QString process;
    MeasurementSystem measurementSystem = MeasurementSystem::Metric;
};

// The state of one configuration's link to its power supply.
enum class LinkState { Stopped, Connecting, Connected, InvalidPort };

QByteArray weld(const WeldContext &context, const CorvaneFUN26 &record,
                const qlxLanguage &language);
QByteArray linkState(const QString &configuration, LinkState state, const QDateTime &time);

QString linkStateName(LinkState state);
// A local time with its offset from UTC, to the millisecond: 2026-11-23T15:02:03.120+01:00.
QString isoTime(const QDateTime &time);

} // namespace MqttPayloads

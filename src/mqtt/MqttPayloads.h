#pragma once

#include "platform/MeasurementSystem.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

struct CorvaneFUN26;
struct RuleViolation;
class qlxLanguage;

namespace qlaDatabase6 {
class Subgroup;
}

// The JSON bodies of the messages a monitor publishes: UTF-8, numbers as numbers, times
// in ISO 8601 with the zone offset. Alarm names and the weld-mode description use the
// language they are given; the publisher passes the built-in texts, so that consumers on
// the bus read the same words from every workstation.
namespace MqttPayloads {

// The monitor a weld or rule message comes from, and the unit system of its values.
struct Source
{
    QString configuration;
    QString part;
    QString process;
    MeasurementSystem measurementSystem = MeasurementSystem::Metric;
};

// The state of one configuration's link to its power supply.
enum class LinkState { Stopped, Connecting, Connected, InvalidPort };

QByteArray weld(const Source &source, const CorvaneFUN26 &record, const qlxLanguage &language);
// The subgroup as the SPC database holds it, row for row, and whether it waits in the
// outbox rather than in the database.
QByteArray subgroup(const QString &configuration, const qlaDatabase6::Subgroup &subgroup,
                    bool queued);
// text: the alarms-list line of the violation.
QByteArray rule(const Source &source, const RuleViolation &violation, const QString &text);
QByteArray linkState(const QString &configuration, LinkState state, const QDateTime &time);

QString linkStateName(LinkState state);
// A local time with its offset from UTC, to the millisecond: 2026-11-23T15:02:03.120+01:00.
QString isoTime(const QDateTime &time);

} // namespace MqttPayloads

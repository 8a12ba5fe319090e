#pragma once

#include <QString>

// The topics a monitor publishes under its root:
//   <root>/status                       "online" / "offline" (retained, last will)
//   <root>/<configuration>/state        link state (retained)
//   <root>/<configuration>/weld         one message per weld
//   <root>/<configuration>/subgroup     one message per completed SPC subgroup
//   <root>/<configuration>/rule         one message per control-rule violation
namespace MqttTopics {

// A configuration name as one topic level. "/", "+" and "#" would split the level or
// act as wildcards, so they and "%" itself are written as %2F, %2B, %23 and %25: two
// different names never share a topic, and a name maps to the same topic on every run.
QString topicSafeName(const QString &configurationName);

QString status(const QString &root);
QString configuration(const QString &root, const QString &configurationName, QStringView leaf);

} // namespace MqttTopics

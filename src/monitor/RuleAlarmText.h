#pragma once

#include <QString>

struct RuleViolation;
class qlxLanguage;

// The alarms-list line of a control-chart rule violation: the characteristic's name and
// what the rule saw, in the user's language ("Energy - Rule 1: one point beyond 3 sigma").
QString ruleAlarmText(const RuleViolation &violation, const qlxLanguage &language);

#pragma once

#include <QDateTime>
#include <QString>

namespace qlaDatabase6 {

// Control limits frozen for one characteristic (test) of a part on a process: the centre
// line and process σ the live check and the charts measure new subgroups against, the
// chart they belong to, the baseline subgroups they were estimated from, and when they
// were frozen. Freezing again keeps the replaced limits in the history.
struct ControlLimitRecord
{
    QString part;
    QString process;
    QString test;
    // "xbar-r", "xbar-s" or "i-mr".
    QString chartType;
    double centre = 0;
    double sigma = 0;
    QDateTime baselineFrom;
    QDateTime baselineUntil;
    int baselineSubgroups = 0;
    QDateTime frozenAt;
};

} // namespace qlaDatabase6

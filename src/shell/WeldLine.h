#pragma once

#include <QString>

struct CorvaneFUN26;
class qlxLanguage;
class RegionalFormat;

// The line that a verbose headless run prints for each weld: configuration name, cycle
// count, weld time, energy and the names of the alarms the record carries ("none"), for
// an operator who watches a terminal instead of the main window.
QString verboseWeldLine(const QString &configurationName, const CorvaneFUN26 &record,
                        const qlxLanguage &language, const RegionalFormat &format);

// The translated names of every alarm bit set in the record, group by group.
QStringList alarmNames(const CorvaneFUN26 &record, const qlxLanguage &language);

#pragma once

#include "SpcCommandLine.h"

#include "spc/ControlChart.h"
#include "spc/StoredSubgroups.h"

#include <QTextStream>

namespace qlaDatabase6 {
class Database;
}

class Clock;

// The analysis commands of the SPC tool: a characteristic's control chart, its
// capability, freezing its control limits and listing the frozen ones. Comma-separated
// figures carry every digit (they read back to the same numbers); the plain report is
// rounded for people.
class SpcAnalysis
{
public:
    SpcAnalysis(qlaDatabase6::Database &database, QTextStream &out, const Clock &clock);

    void chart(const SpcCommand &command);
    void capability(const SpcCommand &command);
    void freezeLimits(const SpcCommand &command);
    void listControlLimits();

    // The chart a command asks for; throws when the limits cannot be estimated.
    spc::Chart chartOf(const SpcCommand &command);

private:
    void writeRow(bool csv, const QStringList &fields);

    qlaDatabase6::Database &m_database;
    QTextStream &m_out;
    const Clock &m_clock;
};

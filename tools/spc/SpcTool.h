#pragma once

#include "SpcCommandLine.h"

#include "platform/spc/Records.h"

#include <QTextStream>

namespace qlaDatabase6 {
class Database;
}

// Carries out one command of the SPC administration tool on a connected database and
// writes what it has to say to `out`. Failures (an unknown part, a name that is taken,
// a database that refuses) are thrown as a ProgramError.
class SpcTool
{
public:
    SpcTool(qlaDatabase6::Database &database, QTextStream &out);

    void run(const SpcCommand &command);

    static QString numberText(double value);

private:
    void addRecord(qlaDatabase6::RecordKind kind, const SpcCommand &command);
    void setLimits(const SpcCommand &command);
    void list(const QString &what);
    void listLimits();
    void subgroups(const SpcCommand &command);
    qlaDatabase6::Record existing(qlaDatabase6::RecordKind kind, const QString &name);

    qlaDatabase6::Database &m_database;
    QTextStream &m_out;
};

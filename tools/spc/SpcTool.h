#pragma once

#include "SpcCommandLine.h"

#include "platform/spc/Records.h"

#include <QTextStream>

namespace qlaDatabase6 {
class Database;
}

class Clock;

// Carries out one command of the SPC administration tool on a connected database and
// writes what it has to say to `out`. Failures (an unknown part, a name that is taken,
// a database that refuses) are thrown as a ProgramError.
class SpcTool
{
public:
    SpcTool(qlaDatabase6::Database &database, QTextStream &out, const Clock &clock);

    void run(const SpcCommand &command);

    // Every digit a number needs to read back the same.
    static QString numberText(double value);
    static QString timeText(const QDateTime &time);
    // A field of a tab-separated line: its own tabs and line breaks become blanks.
    static QString tabSafe(QString text);

private:
    void addRecord(qlaDatabase6::RecordKind kind, const SpcCommand &command);
    void setLimits(const SpcCommand &command);
    void list(const QString &what);
    void listLimits();
    void subgroups(const SpcCommand &command);
    void import(const QString &file);
    qlaDatabase6::Record existing(qlaDatabase6::RecordKind kind, const QString &name);

    qlaDatabase6::Database &m_database;
    QTextStream &m_out;
    const Clock &m_clock;
};

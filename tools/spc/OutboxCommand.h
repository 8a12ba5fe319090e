#pragma once

#include "SpcCommandLine.h"

#include <QTextStream>

// The outbox command of the SPC administration tool: lists the subgroups that wait in
// a monitor's outbox for their database, forwards them to it (--flush), or drops them
// (--discard). With --dsn only the subgroups of that database are touched. Returns the
// exit status: 1 when a flush left subgroups behind.
int runOutboxCommand(const SpcCommand &command, QTextStream &out);

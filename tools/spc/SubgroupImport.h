#pragma once

#include "platform/spc/Subgroup.h"

#include <QList>

namespace qlaDatabase6 {
class Database;
}

// Stores subgroups read from a report into a database, as a plant moves its history
// between a workstation's file and the server: groups, parts, processes and tests that
// are missing are created first, and a subgroup already there (same date-time, part,
// process and source tag) is skipped, so an import can be repeated.
class SubgroupImport
{
public:
    struct Result
    {
        int stored = 0;
        int skipped = 0;
    };

    static Result store(qlaDatabase6::Database &database,
                        const QList<qlaDatabase6::Subgroup> &subgroups);
};

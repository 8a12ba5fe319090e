#pragma once

#include <QString>

class SubgroupOutbox;

namespace qlaDatabase6 {
class Database;
class Subgroup;
} // namespace qlaDatabase6

// Stores one subgroup, first giving it the groups of its part and process when it was
// made while they could not be looked up.
void storeSubgroup(qlaDatabase6::Database &database, qlaDatabase6::Subgroup &subgroup);

// What one round of forwarding did.
struct ForwardResult
{
    int forwarded = 0;
    // Subgroups still waiting for the data source afterwards.
    int remaining = 0;
    // Why the round stopped early; empty when everything waiting was forwarded.
    QString failure;
};

// Moves the subgroups waiting in the outbox for a database's data source into that
// database, oldest first, each in a transaction of its own, and takes each out of the
// outbox only after its commit. The first failure ends the round, so the history
// stays in time order. A subgroup the database already holds (its commit went through
// but the answer was lost) counts as forwarded. A subgroup queued before its part's and
// process's groups were known gets them now.
//
// Connects first when the database is not connected. A failure of the outbox file
// itself is thrown as a ProgramError.
ForwardResult forwardOutbox(SubgroupOutbox &outbox, qlaDatabase6::Database &database);

#pragma once

#include <QString>

#include <optional>

class QObject;

namespace qlaDatabase6 {
class Database;
class Part;
} // namespace qlaDatabase6

// The part selection dialog of the SPC database: lists the database's parts with the
// current one preselected and lets the user pick another. The window provides it; a
// monitor without one cannot change its part at run time.
class PartSelector
{
public:
    virtual ~PartSelector() = default;

    // The name of the part the user confirmed, or nothing when they cancelled. owner is
    // the window the dialog belongs to (may be null).
    virtual std::optional<QString> choosePart(QObject *owner, qlaDatabase6::Database &database,
                                              const qlaDatabase6::Part &current) = 0;
};

#pragma once

#include "platform/spc/Subgroup.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// The subgroup report's comma-separated form: one row per stored value, with the
// subgroup's header repeated on each. The report writes it; an import reads it back into
// whole subgroups.
class SubgroupCsv
{
public:
    static const QStringList &heading();

    // The subgroups of a report, in its order: consecutive rows of one subgroup number
    // make one subgroup, consecutive rows of one test item one item. Returns nothing on
    // text that is not such a report, with the reason and its row in errorText.
    static std::optional<QList<qlaDatabase6::Subgroup>> read(const QString &text,
                                                             QString &errorText);
};

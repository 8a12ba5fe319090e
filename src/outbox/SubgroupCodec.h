#pragma once

#include "platform/spc/Subgroup.h"

#include <QByteArray>

// A subgroup as the text that waits in the outbox: the header with its key, then the
// test items with their values, in the order they were added. Date-times keep their
// milliseconds and stay in local time, as the SPC database keeps them.
namespace SubgroupCodec {

QByteArray encode(const qlaDatabase6::Subgroup &subgroup);
// Throws a ProgramError when the text is not a subgroup.
qlaDatabase6::Subgroup decode(const QByteArray &text);

} // namespace SubgroupCodec

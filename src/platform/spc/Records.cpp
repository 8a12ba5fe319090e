#include "Records.h"

#include "Database.h"

#include "platform/ProgramError.h"

namespace qlaDatabase6 {

QString recordKindText(RecordKind kind)
{
    switch (kind) {
    case RecordKind::Group:
        return QStringLiteral("group");
    case RecordKind::Part:
        return QStringLiteral("part");
    case RecordKind::Process:
        return QStringLiteral("process");
    case RecordKind::Test:
        return QStringLiteral("test");
    }
    return {};
}

bool Record::load(Database &database)
{
    return database.loadRecord(*this);
}

void SpecLimit::setLimits(int flags, double usl, double lsl, double uwl, double lwl)
{
    m_limitFlags = flags;
    m_upperSpecLimit = usl;
    m_lowerSpecLimit = lsl;
    m_upperWarningLimit = uwl;
    m_lowerWarningLimit = lwl;
}

void SpecLimit::checkOrder(const QString &source) const
{
    const bool specInverted = (m_limitFlags & kUpperSpecLimit) &&
                              (m_limitFlags & kLowerSpecLimit) &&
                              m_lowerSpecLimit > m_upperSpecLimit;
    const bool warningInverted = (m_limitFlags & kUpperWarningLimit) &&
                                 (m_limitFlags & kLowerWarningLimit) &&
                                 m_lowerWarningLimit > m_upperWarningLimit;
    if (specInverted || warningInverted)
        throw ProgramError::raised(QStringLiteral("Invalid Value! LimitLower > LimitUpper!"),
                                   source);
}

bool SpecLimit::load(Database &database)
{
    return database.loadSpecLimit(*this);
}

} // namespace qlaDatabase6

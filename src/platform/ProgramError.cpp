#include "ProgramError.h"

ProgramError::ProgramError(qint32 number, QString description, QString source)
    : m_number(number)
    , m_description(std::move(description))
    , m_source(std::move(source))
    , m_what(m_description.toUtf8())
{
}

ProgramError ProgramError::raised(QString description, QString source)
{
    return ProgramError(kProgramErrorNumber, std::move(description), std::move(source));
}

ProgramError ProgramError::overflow(QString source)
{
    return ProgramError(kOverflow, QStringLiteral("Overflow"), std::move(source));
}

ProgramError ProgramError::subscriptOutOfRange(QString source)
{
    return ProgramError(kSubscriptOutOfRange, QStringLiteral("Subscript out of range"),
                        std::move(source));
}

ProgramError ProgramError::divisionByZero(QString source)
{
    return ProgramError(kDivisionByZero, QStringLiteral("Division by zero"), std::move(source));
}

void ProgramError::addSource(const QString &procedure)
{
    // A procedure that raised the failure itself is already named.
    if (m_source.isEmpty())
        m_source = procedure;
    else if (!m_source.endsWith(procedure))
        m_source += QStringLiteral(" < ") + procedure;
}

const char *ProgramError::what() const noexcept
{
    return m_what.constData();
}

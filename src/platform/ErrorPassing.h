#pragma once

#include "ErrorReport.h"
#include "ProgramError.h"

#include <new>
#include <utility>

// Runs a procedure that passes its failures on to its caller: a failure leaves with
// `procedure` ("Object.Procedure") added to its source. Failures that are not a
// ProgramError yet (memory exhaustion) are turned into one on the way.
template <typename Procedure>
decltype(auto) passOn(const char *procedure, Procedure &&body)
{
    try {
        return std::forward<Procedure>(body)();
    } catch (ProgramError &error) {
        error.addSource(QLatin1String(procedure));
        throw;
    } catch (const std::bad_alloc &) {
        throw ProgramError(ProgramError::kOutOfMemory, QStringLiteral("Out of memory"),
                           QLatin1String(procedure));
    }
}

// Runs an event procedure, which stands at the top of a chain of calls: a failure is
// shown through the error report with the procedure's location, and the event then
// ends as if it had completed. Returns false when a failure was reported.
template <typename Procedure>
bool reportFailures(ErrorReport &report, const char *location, Procedure &&body)
{
    try {
        std::forward<Procedure>(body)();
        return true;
    } catch (const ProgramError &error) {
        report.Show(QLatin1String(location), error.number(), error.description(),
                    error.source());
    } catch (const std::bad_alloc &) {
        report.Show(QLatin1String(location), ProgramError::kOutOfMemory,
                    QStringLiteral("Out of memory"), QLatin1String(location));
    }
    return false;
}

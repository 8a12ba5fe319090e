#pragma once

#include "platform/ProgramError.h"

#include <optional>

// Runs a call that ought to fail and returns the error it raised, or nothing when it
// went through; the test then compares number, description and source.
template <typename Call> std::optional<ProgramError> refusal(Call call)
{
    try {
        call();
    } catch (const ProgramError &error) {
        return error;
    }
    return std::nullopt;
}

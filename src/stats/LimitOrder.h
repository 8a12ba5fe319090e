#pragma once

// The two assignments that move a pair of limits to [newLower, newUpper] without ever
// leaving the lower limit above the upper one in between, which the meter and the
// histogram refuse: widen first, then narrow. A range that moves up past the current
// upper limit must raise that limit first; any other move lowers the lower limit first.
enum class LimitOrder { LowerFirst, UpperFirst };

inline LimitOrder safeLimitOrder(double currentUpper, double newLower)
{
    return newLower > currentUpper ? LimitOrder::UpperFirst : LimitOrder::LowerFirst;
}

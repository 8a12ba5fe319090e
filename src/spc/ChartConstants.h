#pragma once

namespace spc {

// The bias constants of the range and standard deviation of n values drawn from a normal
// distribution: d2(n) is the mean of the range in units of σ, d3(n) its standard
// deviation, c4(n) the mean of the sample standard deviation. d2 and d3 come from the
// tables quality engineers use (three decimals, n from 2 to 25); c4 from its closed form
// for any n of at least 2.
class ChartConstants
{
public:
    static constexpr int kLargestRangeSubgroup = 25;

    // 0 outside 2 .. kLargestRangeSubgroup.
    static double d2(int n);
    static double d3(int n);
    // 0 below 2.
    static double c4(int n);
};

} // namespace spc

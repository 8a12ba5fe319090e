#pragma once

#include "ControlChart.h"
#include "RuleSet.h"

#include <span>
#include <vector>

namespace spc {

// The eight run rules on the upper chart, with zones at each point's own σ/√n:
// 1 one point beyond 3σ; 2 nine in a row on one side of the centre; 3 six in a row
// steadily rising or falling; 4 fourteen in a row alternating up and down; 5 two of
// three beyond 2σ on the same side; 6 four of five beyond 1σ on the same side;
// 7 fifteen in a row within 1σ; 8 eight in a row beyond 1σ (either side).
// A violation belongs to the point that completes its pattern, so a live check that
// sees one point arrive finds the same violations as a chart drawn afterwards.
class RunRules
{
public:
    // The enabled rules that the pattern ending at points[index] breaks, looking only at
    // points up to index.
    static RuleSet brokenAt(std::span<const ChartPoint> points, std::size_t index, RuleSet enabled);

    // Sets xRules of every point.
    static void mark(std::vector<ChartPoint> &points, RuleSet enabled);
};

} // namespace spc

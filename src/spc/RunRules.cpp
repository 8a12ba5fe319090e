#include "RunRules.h"

#include <cmath>

namespace spc {

namespace {

// The points of the pattern that ends at `last` and has `length` points; empty when
// there are not that many yet.
std::span<const ChartPoint> ending(std::span<const ChartPoint> points, std::size_t last,
                                   std::size_t length)
{
    if (last + 1 < length)
        return {};
    return points.subspan(last + 1 - length, length);
}

template <typename Test> bool every(std::span<const ChartPoint> run, Test test)
{
    if (run.empty())
        return false;
    for (const ChartPoint &p : run)
        if (!test(p))
            return false;
    return true;
}

bool oneSide(std::span<const ChartPoint> run)
{
    return every(run, [](const ChartPoint &p) { return p.x > p.xCentre; }) ||
           every(run, [](const ChartPoint &p) { return p.x < p.xCentre; });
}

bool trend(std::span<const ChartPoint> run)
{
    if (run.empty())
        return false;
    bool rising = true;
    bool falling = true;
    for (std::size_t i = 1; i < run.size(); ++i) {
        rising = rising && run[i].x > run[i - 1].x;
        falling = falling && run[i].x < run[i - 1].x;
    }
    return rising || falling;
}

bool alternating(std::span<const ChartPoint> run)
{
    if (run.size() < 3)
        return false;
    for (std::size_t i = 2; i < run.size(); ++i) {
        const double before = run[i - 1].x - run[i - 2].x;
        const double now = run[i].x - run[i - 1].x;
        if (!(before * now < 0))
            return false;
    }
    return true;
}

// `needed` of the run beyond `zones` on the side of the last point, the last point
// among them: a point back near the centre does not repeat a violation already marked.
bool manyBeyond(std::span<const ChartPoint> run, double zones, int needed)
{
    if (run.empty())
        return false;
    const double lastZone = run.back().zone();
    if (std::abs(lastZone) <= zones)
        return false;
    const double side = lastZone > 0 ? 1 : -1;
    int count = 0;
    for (const ChartPoint &p : run)
        if (side * p.zone() > zones)
            ++count;
    return count >= needed;
}

} // namespace

RuleSet RunRules::brokenAt(std::span<const ChartPoint> points, std::size_t index, RuleSet enabled)
{
    RuleSet broken;
    const auto check = [&](int rule, std::size_t length, auto test) {
        if (enabled.contains(rule) && test(ending(points, index, length)))
            broken.insert(rule);
    };
    check(1, 1, [](auto run) { return !run.empty() && std::abs(run[0].zone()) > 3; });
    check(2, 9, oneSide);
    check(3, 6, trend);
    check(4, 14, alternating);
    check(5, 3, [](auto run) { return manyBeyond(run, 2, 2); });
    check(6, 5, [](auto run) { return manyBeyond(run, 1, 4); });
    check(7, 15, [](auto run) {
        return every(run, [](const ChartPoint &p) { return std::abs(p.zone()) < 1; });
    });
    check(8, 8, [](auto run) {
        return every(run, [](const ChartPoint &p) { return std::abs(p.zone()) > 1; });
    });
    return broken;
}

void RunRules::mark(std::vector<ChartPoint> &points, RuleSet enabled)
{
    for (std::size_t i = 0; i < points.size(); ++i)
        points[i].xRules = brokenAt(points, i, enabled);
}

} // namespace spc

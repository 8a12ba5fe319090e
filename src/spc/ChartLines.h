#pragma once

#include "ControlChart.h"

#include <QString>

#include <vector>

namespace spc {

// A line of a chart as keys (seconds since the epoch) and values. Limit lines change
// only where a subgroup of another size arrives, so they keep the points where the value
// changes (and the last): drawn as steps centred on their points, each point's limit
// stands around it.
struct ChartLine
{
    std::vector<double> keys;
    std::vector<double> values;

    void append(double key, double value);
    // Adds a point only where the value changes, with the point before it, and always
    // the last one.
    void appendStep(double previousKey, double key, double value, bool last);
};

// A point that broke a rule, with what it says on hover: "Rules 1 5".
struct MarkedPoint
{
    double key = 0;
    double value = 0;
    RuleSet rules;
    bool spreadBeyondLimits = false;
};

// What a pair of control charts draws, worked out from a chart: the plotted values,
// centre, control and zone lines of the upper chart, the spread and its lines on the
// lower chart, and the points that break a rule on either.
struct ChartLines
{
    ChartLine x;
    ChartLine xCentre;
    ChartLine xUpper;
    ChartLine xLower;
    // Zone lines at +1σ, -1σ, +2σ, -2σ of each point's own σ/√n.
    ChartLine zones[4];
    ChartLine spread;
    ChartLine spreadCentre;
    ChartLine spreadUpper;
    ChartLine spreadLower;
    std::vector<MarkedPoint> xMarked;
    std::vector<MarkedPoint> spreadMarked;

    static ChartLines of(const Chart &chart);
    static double keyOf(const QDateTime &time);
    static QDateTime timeOf(double key);
};

} // namespace spc

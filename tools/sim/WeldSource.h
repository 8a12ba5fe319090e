#pragma once

#include <QByteArray>

#include <optional>

// What a simulated power supply puts on its link at each step: the bytes of one weld
// (a frame, its trailing byte, any garbage), a piece of a replayed capture, or nothing
// this time. Nothing more at all (std::nullopt) ends the supply.
class WeldSource
{
public:
    virtual ~WeldSource() = default;

    virtual std::optional<QByteArray> next() = 0;
    // Whether a step is one weld, so that --count counts it.
    virtual bool stepsAreWelds() const { return true; }
};

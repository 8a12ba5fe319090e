#pragma once

#include "WeldGenerator.h"
#include "WeldSource.h"

// Simulated welds: after each one the Function 26 frame, one trailing byte so that a
// receiver can take the frame at once, and optionally some line noise. The noise never
// holds a DLE (0x10), so it can never be taken for the start of a frame.
class GeneratedWelds : public WeldSource
{
public:
    GeneratedWelds(const WeldGenerator &generator, MeasurementSystem system, int garbageBytes,
                   quint32 garbageSeed);

    std::optional<QByteArray> next() override;

private:
    WeldGenerator m_generator;
    MeasurementSystem m_system;
    int m_garbageBytes;
    QRandomGenerator m_noise;
};

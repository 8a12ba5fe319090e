#pragma once

#include <QtGlobal>

#include <cstdint>
#include <optional>
#include <random>

struct CorvaneFUN26;

// Simulated weld values for demonstrations ("/debug"): every received record's values
// are scattered uniformly over +/-10 % of the received ones, and now and then one alarm
// bit is set in a group. The program keeps one for all its monitors and seeds it once per
// run; without a seed the generator starts where it always starts.
class WeldSimulator
{
public:
    explicit WeldSimulator(std::optional<std::uint32_t> seed = std::nullopt);

    // Replaces the alarm words, the cycle count (by totalWelds, the welds counted before
    // this one) and the measured values of record.
    void RandomizeValues(CorvaneFUN26 &record, qint32 totalWelds);
    // value * 0.2 * r + value - value * 0.1, with r uniform in [0, 1).
    double RandomizeDouble(double value);

private:
    double nextUniform();
    qint32 randomizeInteger(qint32 value);

    std::mt19937 m_random;
};

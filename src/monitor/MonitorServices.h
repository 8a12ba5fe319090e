#pragma once

#include "platform/MeasurementSystem.h"
#include "stats/Dataset.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

class Clock;
class ErrorReport;
class EventLog;
class SamplingSeam;
class SerialPort;
class SocketPort;

// Everything an equipment monitor needs from outside, handed in once at creation by the
// composition root (the shell) or by a test. The services behind the references must
// outlive the monitor.
struct MonitorServices
{
    // Failures of the monitor's event procedures (data arrival, timer ticks, commands).
    ErrorReport &errors;
    // Socket errors and data log failures, where no user waits for an answer.
    EventLog &eventLog;
    const Clock &clock;
    MeasurementSystem measurementSystem = MeasurementSystem::Metric;
    // "/debug" on the command line: received records are replaced by simulated values.
    bool debugMode = false;
    // Makers of the two link transports; the monitor creates one of each as it needs it.
    std::function<std::unique_ptr<SocketPort>()> makeSocket = {};
    std::function<std::unique_ptr<SerialPort>()> makeSerialPort = {};
    // Start of the simulated-data random sequence; without one the generator's default
    // start is used, so the same sequence repeats from run to run.
    std::optional<std::uint32_t> randomSeed = std::nullopt;
    // Values of each characteristic kept one by one before the oldest are folded into a
    // tally (a month at one weld a second unless the plant says otherwise).
    qint64 valueBound = Dataset::kDefaultValueBound;
    // Maker of the SPC sampling object; without one the monitor samples nothing.
    std::function<std::unique_ptr<SamplingSeam>()> makeSampling = {};
};

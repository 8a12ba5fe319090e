#pragma once

#include "platform/MeasurementSystem.h"
#include "stats/Dataset.h"

#include <functional>
#include <memory>

class Clock;
class ErrorReport;
class EventLog;
class MessageBoxes;
class SamplingSeam;
class SerialPort;
class SocketPort;
class WeldSimulator;

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
    // The program's one generator of simulated values, shared by every monitor so that
    // each tab shows values of its own; a monitor made without it (a tool, a test) gets
    // one of its own that starts where the generator always starts.
    WeldSimulator *simulator = nullptr;
    // Values of each characteristic kept one by one before the oldest are folded into a
    // tally (a month at one weld a second unless the plant says otherwise).
    qint64 valueBound = Dataset::kDefaultValueBound;
    // Maker of the SPC sampling object; without one the monitor samples nothing.
    std::function<std::unique_ptr<SamplingSeam>()> makeSampling = {};
    // Tells the engineer why Start was refused; without it the refusal is only logged.
    MessageBoxes *messageBoxes = nullptr;
};

#pragma once

#include "platform/MeasurementSystem.h"

#include <functional>
#include <memory>

class Clock;
class DatabaseSupport;
class ErrorReport;
class MessageBoxes;
class SaveFileChooser;
class SerialPort;
class SocketPort;

// What the setup dialogs need from outside, wired by the shell or by a test. The
// services behind the references must outlive the dialogs.
struct SetupServices
{
    // Failures of the dialogs' event procedures.
    ErrorReport &errors;
    // Validation messages and the beep of a port that will not open.
    MessageBoxes &messages;
    // Opens the event log for the test console's error log button.
    DatabaseSupport &database;
    // The file chooser of the data logging dialog.
    SaveFileChooser &fileChooser;
    // The test console stamps its decoded records with this clock and scales them in
    // the program's unit system, as the monitor does.
    const Clock &clock;
    MeasurementSystem measurementSystem = MeasurementSystem::Metric;
    // Makers of the test console's own link transports; without them the console uses
    // a TcpSocketPort and a QtSerialPort.
    std::function<std::unique_ptr<SocketPort>()> makeSocket = {};
    std::function<std::unique_ptr<SerialPort>()> makeSerialPort = {};
};

#pragma once

#include <QMetaType>

// Where a monitor's link stands. The numbers are the ones the main window and a
// headless run read through DriverState().
enum class LinkState {
    ShutDown = 0,         // the monitor was shut down; its slot is free
    Stopped = 1,          // not collecting; also set on entry to every reconnect
    ConnectRequested = 2, // a connect was started (a serial link stays here while it receives)
    Connected = 3,        // the TCP connection is established
};
Q_DECLARE_METATYPE(LinkState)

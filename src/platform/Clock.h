#pragma once

#include <QDateTime>

// The source of the current local date and time. Everything that reads the time takes
// a Clock, so that five-minute silences and sampling periods run in milliseconds under
// test with a clock that is moved by hand.
class Clock
{
public:
    virtual ~Clock() = default;
    virtual QDateTime now() const = 0;
};

class SystemClock : public Clock
{
public:
    QDateTime now() const override { return QDateTime::currentDateTime(); }
};

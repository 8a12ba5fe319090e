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
    // The same moment as now(), for stamping every weld record: it may come in UTC, and
    // is turned into local time only where a person or a data log reads it.
    virtual QDateTime stamp() const { return now(); }
};

class SystemClock : public Clock
{
public:
    QDateTime now() const override { return QDateTime::currentDateTime(); }
    // Local time costs a look into the zone database on every call; UTC does not.
    QDateTime stamp() const override { return QDateTime::currentDateTimeUtc(); }
};

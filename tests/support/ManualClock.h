#pragma once

#include "platform/Clock.h"

// A clock that stands still until a test moves it.
class ManualClock : public Clock
{
public:
    explicit ManualClock(QDateTime start = QDateTime(QDate(2026, 11, 14), QTime(22, 5, 9)))
        : m_now(std::move(start))
    {
    }

    QDateTime now() const override { return m_now; }
    void set(const QDateTime &time) { m_now = time; }
    void advanceSeconds(qint64 seconds) { m_now = m_now.addSecs(seconds); }
    void advanceMilliseconds(qint64 ms) { m_now = m_now.addMSecs(ms); }

private:
    QDateTime m_now;
};

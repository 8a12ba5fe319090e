#pragma once

#include "monitor/LinkState.h"

#include <QDateTime>
#include <QObject>
#include <QString>

#include <array>
#include <deque>
#include <vector>

class Clock;
class EquipmentMonitor;

// What the hall overview shows of one welder, kept up to date from its monitor's
// signals: how many welds it made in the last hour and at what rate, when the last one
// came, and for each characteristic how many of its recent welds broke its
// specification or warning limits; its SPC backlog and the control-rule violations of the
// last hour. Reading costs nothing; the figures change with every weld.
class WelderFigures : public QObject
{
    Q_OBJECT

public:
    // Welds per characteristic over which the limit breaks are counted.
    static constexpr int kRecentWelds = 50;

    struct Characteristic
    {
        QString name;
        bool hasLimits = false;
        int outOfSpecification = 0;
        int warnings = 0;
    };

    WelderFigures(EquipmentMonitor &monitor, const Clock &clock, QObject *parent = nullptr);

    EquipmentMonitor &monitor() const { return m_monitor; }
    LinkState linkState() const;
    qint64 weldsInLastHour() const;
    // Welds per minute over the last ten minutes, or since the first weld in them.
    double weldsPerMinute() const;
    QDateTime lastWeldTime() const;
    const std::vector<Characteristic> &characteristics() const { return m_characteristics; }
    // Subgroups waiting in the outbox for the SPC database.
    int spcBacklog() const;
    // Control-rule violations of the last hour, and the alarms-list line of the newest
    // violation ever seen (of the last hour when that count is not zero).
    int ruleViolationsInLastHour() const;
    QString lastRuleViolation() const;

signals:
    void changed();

private:
    // A weld is counted in the minute it arrived; an hour of minutes is kept.
    struct Minute
    {
        qint64 index = -1;
        qint64 welds = 0;
    };
    static constexpr int kMinutes = 60;

    void addWeld();
    void addRuleViolation(const QString &text);
    qint64 weldsSince(int minutes) const;
    qint64 minuteNow() const;

    EquipmentMonitor &m_monitor;
    const Clock &m_clock;
    std::array<Minute, kMinutes> m_minutes{};
    std::vector<Characteristic> m_characteristics;
    // Per characteristic, the breaks of its recent welds: 2 out of specification,
    // 1 warning, 0 inside.
    std::vector<std::deque<quint8>> m_recent;
    struct Violation
    {
        QDateTime when;
        QString text;
    };
    std::deque<Violation> m_violations;
};

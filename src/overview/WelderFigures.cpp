#include "WelderFigures.h"

#include "monitor/EquipmentMonitor.h"
#include "platform/Clock.h"

#include <algorithm>

WelderFigures::WelderFigures(EquipmentMonitor &monitor, const Clock &clock, QObject *parent)
    : QObject(parent)
    , m_monitor(monitor)
    , m_clock(clock)
{
    connect(&monitor, &EquipmentMonitor::weldProcessed, this, &WelderFigures::addWeld);
    connect(&monitor, &EquipmentMonitor::linkStateChanged, this, &WelderFigures::changed);
    connect(&monitor, &EquipmentMonitor::connectionProblemChanged, this, &WelderFigures::changed);
    connect(&monitor, &EquipmentMonitor::spcBacklogChanged, this, &WelderFigures::changed);
    connect(&monitor, &EquipmentMonitor::ruleViolated, this,
            [this](const RuleViolation &, const QString &text) { addRuleViolation(text); });
}

int WelderFigures::spcBacklog() const
{
    return m_monitor.spcBacklog();
}

int WelderFigures::ruleViolationsInLastHour() const
{
    const QDateTime hourAgo = m_clock.now().addSecs(-kMinutes * 60);
    return int(std::count_if(m_violations.begin(), m_violations.end(),
                             [&](const Violation &violation) { return violation.when > hourAgo; }));
}

QString WelderFigures::lastRuleViolation() const
{
    return m_violations.empty() ? QString() : m_violations.back().text;
}

void WelderFigures::addRuleViolation(const QString &text)
{
    const QDateTime now = m_clock.now();
    // Only the last hour is shown: older violations are let go as new ones come.
    while (!m_violations.empty() && m_violations.front().when <= now.addSecs(-kMinutes * 60))
        m_violations.pop_front();
    m_violations.push_back({now, text});
    emit changed();
}

LinkState WelderFigures::linkState() const
{
    return m_monitor.linkState();
}

QDateTime WelderFigures::lastWeldTime() const
{
    return m_monitor.lastWeldTime();
}

qint64 WelderFigures::weldsInLastHour() const
{
    return weldsSince(kMinutes);
}

double WelderFigures::weldsPerMinute() const
{
    // Over the minutes of the last ten that had welds, from the first of them on, so a
    // welder that started a minute ago shows its real pace.
    constexpr int kRateMinutes = 10;
    const qint64 now = minuteNow();
    qint64 first = now;
    for (const Minute &minute : m_minutes) {
        if (minute.index > now - kRateMinutes && minute.index <= now && minute.welds > 0)
            first = qMin(first, minute.index);
    }
    return double(weldsSince(kRateMinutes)) / double(now - first + 1);
}

qint64 WelderFigures::minuteNow() const
{
    return m_clock.now().toSecsSinceEpoch() / 60;
}

qint64 WelderFigures::weldsSince(int minutes) const
{
    const qint64 now = minuteNow();
    qint64 welds = 0;
    for (const Minute &minute : m_minutes) {
        if (minute.index > now - minutes && minute.index <= now)
            welds += minute.welds;
    }
    return welds;
}

void WelderFigures::addWeld()
{
    const qint64 now = minuteNow();
    Minute &minute = m_minutes[size_t(now % kMinutes)];
    if (minute.index != now)
        minute = {now, 0};
    ++minute.welds;

    // The datasets are made anew when the monitor loads a configuration: follow them.
    const DatasetCollection &datasets = m_monitor.datasets();
    if (m_characteristics.size() != size_t(datasets.Count())) {
        m_characteristics.assign(size_t(datasets.Count()), {});
        m_recent.assign(size_t(datasets.Count()), {});
    }
    for (qsizetype i = 0; i < datasets.Count(); ++i) {
        const Dataset &dataset = datasets.at(i);
        Characteristic &shown = m_characteristics[size_t(i)];
        std::deque<quint8> &recent = m_recent[size_t(i)];
        shown.name = dataset.Name;
        shown.hasLimits = dataset.HasLimits();
        const quint8 fresh = dataset.ExceedsSpecifications() ? 2
                             : dataset.ExceedsWarnings()     ? 1
                                                             : 0;
        recent.push_back(fresh);
        shown.outOfSpecification += fresh == 2;
        shown.warnings += fresh == 1;
        if (recent.size() > size_t(kRecentWelds)) {
            shown.outOfSpecification -= recent.front() == 2;
            shown.warnings -= recent.front() == 1;
            recent.pop_front();
        }
    }
    emit changed();
}

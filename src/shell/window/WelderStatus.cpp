#include "WelderStatus.h"

#include "platform/qlxLanguage.h"
#include "shell/ConfigurationSet.h"

#include <QApplication>
#include <QIcon>
#include <QStyle>
#include <QSystemTrayIcon>
#include <QTabBar>

namespace {

QIcon conditionIcon(WelderCondition condition)
{
    switch (condition) {
    case WelderCondition::LinkDown:
        return QApplication::style()->standardIcon(QStyle::SP_MessageBoxWarning);
    case WelderCondition::OutOfSpecification:
        return QApplication::style()->standardIcon(QStyle::SP_MessageBoxCritical);
    case WelderCondition::Stopped:
    case WelderCondition::Connected:
        break;
    }
    return {};
}

} // namespace

WelderStatus::WelderStatus(const ConfigurationSet &configurations, QTabBar &tabs,
                           QSystemTrayIcon &tray, const qlxLanguage &language,
                           QString applicationTitle, QObject *parent)
    : QObject(parent)
    , m_configurations(configurations)
    , m_tabs(tabs)
    , m_tray(tray)
    , m_language(language)
    , m_applicationTitle(std::move(applicationTitle))
{
    m_timer.setInterval(kIntervalMs);
    connect(&m_timer, &QTimer::timeout, this, &WelderStatus::refresh);
    m_timer.start();
    refresh();
}

QIcon WelderStatus::trayImage()
{
    return QIcon(QStringLiteral(":/corvane-monitor/DEFAULT.svg"));
}

void WelderStatus::refresh()
{
    int notConnected = 0;
    const QList<ConfigurationTab> &tabs = m_configurations.tabs();
    for (int slot = 0; slot < m_configurations.slotCount(); ++slot) {
        const ConfigurationMonitor &monitor = m_configurations.monitor(slot);
        if (monitor.DriverState() == 0)
            continue;
        const WelderCondition condition = monitor.condition();
        notConnected += condition == WelderCondition::LinkDown;
        for (int tab = 0; tab < tabs.size() && tab < m_tabs.count(); ++tab) {
            if (tabs.at(tab).key != monitor.identifier())
                continue;
            m_tabs.setTabIcon(tab, conditionIcon(condition));
            m_tabs.setTabToolTip(
                tab, condition == WelderCondition::LinkDown
                         ? m_language.Translate(u"7009|The link to the power supply is not up")
                     : condition == WelderCondition::OutOfSpecification
                         ? m_language.Translate(u"7011|The last weld is out of specification")
                         : QString());
        }
    }
    if (notConnected == m_notConnected)
        return;
    m_notConnected = notConnected;
    m_tray.setIcon(notConnected > 0 ? conditionIcon(WelderCondition::LinkDown) : trayImage());
    m_tray.setToolTip(notConnected > 0 ? m_applicationTitle + u'\n' +
                                             m_language.TranslateCount(
                                                 u"7012|%1 welder not connected",
                                                 u"7013|%1 welders not connected", notConnected)
                                       : m_applicationTitle);
}

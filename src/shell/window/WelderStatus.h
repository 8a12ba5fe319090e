#pragma once

#include <QIcon>
#include <QObject>
#include <QString>
#include <QTimer>

class ConfigurationSet;
class QSystemTrayIcon;
class QTabBar;
class qlxLanguage;

// How each welder stands, shown where it is seen from across the cell: every tab carries
// an icon and a tooltip while its welder's link is down or its last weld is out of
// specification, and the tray's icon and tooltip say how many welders that are meant to
// collect are not connected, so a lost link on a hidden tab is not missed. Welders that
// are stopped on purpose are not counted. Looks again every second.
class WelderStatus : public QObject
{
    Q_OBJECT

public:
    static constexpr int kIntervalMs = 1000;

    // Everything handed in must outlive this object.
    WelderStatus(const ConfigurationSet &configurations, QTabBar &tabs, QSystemTrayIcon &tray,
                 const qlxLanguage &language, QString applicationTitle, QObject *parent);

    // The tray's and the window's image while every welder is well.
    static QIcon trayImage();

    void refresh();
    // Welders collecting without a link, at the last look.
    int notConnectedCount() const { return m_notConnected; }

private:
    const ConfigurationSet &m_configurations;
    QTabBar &m_tabs;
    QSystemTrayIcon &m_tray;
    const qlxLanguage &m_language;
    QString m_applicationTitle;
    QTimer m_timer;
    int m_notConnected = -1;
};

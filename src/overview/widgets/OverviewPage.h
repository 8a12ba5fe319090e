#pragma once

#include <QHash>
#include <QScrollArea>
#include <QSet>
#include <QTimer>

#include <memory>
#include <vector>

class Clock;
class EquipmentMonitor;
class QGridLayout;
class WelderFigures;
class WelderTile;
class qlxLanguage;

// The hall at a glance: a tile per welder, in rows that fill the window's width. A weld
// marks its welder's tile; the marked tiles are refreshed once per pass of the event loop,
// however many welds arrived in it, and Qt paints only the tiles in view. A slow timer
// refreshes every tile so that the hourly counts age without welds.
class OverviewPage : public QScrollArea
{
    Q_OBJECT

public:
    OverviewPage(const Clock &clock, const qlxLanguage &language, QWidget *parent = nullptr);
    ~OverviewPage() override;

    void addWelder(EquipmentMonitor &monitor);
    void removeWelder(const EquipmentMonitor &monitor);
    WelderTile *tile(const QString &identifier) const;
    // How many times tiles were refreshed since the page was made, for the cost checks.
    qint64 refreshCount() const { return m_refreshes; }

signals:
    // A tile was clicked: show that welder's tab.
    void welderChosen(const QString &identifier);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    struct Entry
    {
        std::unique_ptr<WelderFigures> figures;
        WelderTile *tile = nullptr;
    };

    void markChanged(WelderTile *tile);
    void refreshMarked();
    void refreshAll();
    void arrange();
    int columnCount() const;

    const Clock &m_clock;
    const qlxLanguage &m_language;
    QWidget *m_canvas = nullptr;
    QGridLayout *m_grid = nullptr;
    std::vector<Entry> m_entries;
    QSet<WelderTile *> m_marked;
    bool m_refreshQueued = false;
    QTimer m_ageing;
    int m_columns = 0;
    qint64 m_refreshes = 0;
};

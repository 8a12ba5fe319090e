#include "OverviewPage.h"

#include "WelderTile.h"

#include "monitor/EquipmentMonitor.h"
#include "overview/WelderFigures.h"

#include <QGridLayout>

namespace {

constexpr int kTileWidth = 300;
constexpr int kAgeingMs = 10000;

} // namespace

OverviewPage::OverviewPage(const Clock &clock, const qlxLanguage &language, QWidget *parent)
    : QScrollArea(parent)
    , m_clock(clock)
    , m_language(language)
{
    setObjectName(QStringLiteral("OverviewPage"));
    setWidgetResizable(true);
    m_canvas = new QWidget(this);
    m_grid = new QGridLayout(m_canvas);
    m_grid->setSpacing(8);
    m_grid->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    setWidget(m_canvas);

    m_ageing.setInterval(kAgeingMs);
    connect(&m_ageing, &QTimer::timeout, this, &OverviewPage::refreshAll);
    m_ageing.start();
}

OverviewPage::~OverviewPage() = default;

void OverviewPage::addWelder(EquipmentMonitor &monitor)
{
    Entry entry;
    entry.figures = std::make_unique<WelderFigures>(monitor, m_clock);
    entry.tile = new WelderTile(*entry.figures, m_language, m_canvas);
    WelderTile *tile = entry.tile;
    connect(entry.figures.get(), &WelderFigures::changed, this,
            [this, tile] { markChanged(tile); });
    connect(tile, &WelderTile::clicked, this,
            [this, &monitor] { emit welderChosen(monitor.identifier()); });
    m_entries.push_back(std::move(entry));
    arrange();
}

void OverviewPage::removeWelder(const EquipmentMonitor &monitor)
{
    for (auto it = m_entries.begin(); it != m_entries.end(); ++it) {
        if (&it->figures->monitor() == &monitor) {
            m_marked.remove(it->tile);
            delete it->tile;
            m_entries.erase(it);
            arrange();
            return;
        }
    }
}

WelderTile *OverviewPage::tile(const QString &identifier) const
{
    for (const Entry &entry : m_entries) {
        if (entry.figures->monitor().identifier() == identifier)
            return entry.tile;
    }
    return nullptr;
}

void OverviewPage::markChanged(WelderTile *tile)
{
    m_marked.insert(tile);
    if (m_refreshQueued)
        return;
    m_refreshQueued = true;
    QMetaObject::invokeMethod(this, &OverviewPage::refreshMarked, Qt::QueuedConnection);
}

void OverviewPage::refreshMarked()
{
    m_refreshQueued = false;
    for (WelderTile *tile : std::as_const(m_marked))
        tile->refresh();
    m_refreshes += m_marked.size();
    m_marked.clear();
}

void OverviewPage::refreshAll()
{
    if (!isVisible())
        return;
    for (const Entry &entry : m_entries)
        entry.tile->refresh();
    m_refreshes += qint64(m_entries.size());
}

int OverviewPage::columnCount() const
{
    const int tileWidth =
        m_entries.empty() ? kTileWidth : qMax(kTileWidth, m_entries.front().tile->sizeHint().width());
    const QMargins margins = m_grid->contentsMargins();
    const int room = viewport()->width() - margins.left() - margins.right() + m_grid->spacing();
    return qMax(1, room / (tileWidth + m_grid->spacing()));
}

void OverviewPage::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    if (columnCount() != m_columns)
        arrange();
}

void OverviewPage::arrange()
{
    m_columns = columnCount();
    for (const Entry &entry : m_entries)
        m_grid->removeWidget(entry.tile);
    for (size_t i = 0; i < m_entries.size(); ++i)
        m_grid->addWidget(m_entries[i].tile, int(i) / m_columns, int(i) % m_columns);
}

#include "ControlChartWindows.h"

#include "ChartCaptions.h"
#include "dlgChartSelection.h"
#include "dlgControlChart.h"

#include "platform/MessageBoxes.h"
#include "platform/qlxLanguage.h"
#include "platform/spc/SqlDatabase.h"

#include <algorithm>

ControlChartWindows::ControlChartWindows(ErrorReport &errors, MessageBoxes &messages,
                                         const Clock &clock)
    : m_errors(errors)
    , m_messages(messages)
    , m_clock(clock)
{}

ControlChartWindows::~ControlChartWindows() = default;

std::unique_ptr<qlaDatabase6::Database> ControlChartWindows::connect(const qlxLanguage &language,
                                                                     const QString &dsn)
{
    auto database = std::make_unique<qlaDatabase6::SqlDatabase>();
    database->setDataSourceName(dsn);
    if (database->openConnection())
        return database;
    m_messages.critical(
        language.Translate(ChartCaptions::kControlChart),
        language.Translate(ChartCaptions::kNoDatabase).arg(database->lastErrorText()));
    return nullptr;
}

dlgControlChart *ControlChartWindows::open(const qlxLanguage &language, const QString &dsn,
                                           const spc::Characteristic &characteristic,
                                           QWidget *parent)
{
    std::unique_ptr<qlaDatabase6::Database> database = connect(language, dsn);
    if (!database)
        return nullptr;
    auto *window = new dlgControlChart(std::move(database), characteristic, language, m_errors,
                                       m_messages, m_clock, parent);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setRange({}, {});
    window->show();
    // Windows closed since the last one opened are gone from the list.
    std::erase_if(m_windows, [](const QPointer<dlgControlChart> &w) { return w.isNull(); });
    m_windows.emplace_back(window);
    return window;
}

dlgControlChart *ControlChartWindows::choose(const qlxLanguage &language, const QString &dsn,
                                             QWidget *parent)
{
    std::optional<spc::Characteristic> characteristic;
    {
        const std::unique_ptr<qlaDatabase6::Database> database = connect(language, dsn);
        if (!database)
            return nullptr;
        characteristic = dlgChartSelection::choose(*database, language, parent);
    }
    return characteristic ? open(language, dsn, *characteristic, parent) : nullptr;
}

void ControlChartWindows::subgroupStored(const QString &part, const QString &process)
{
    for (const QPointer<dlgControlChart> &window : m_windows) {
        if (!window)
            continue;
        const spc::Characteristic &c = window->snapshot().characteristic;
        if (c.part == part && c.process == process)
            window->refresh();
    }
}

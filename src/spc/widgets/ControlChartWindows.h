#pragma once

#include "spc/StoredSubgroups.h"

#include <QPointer>
#include <QString>

#include <memory>
#include <vector>

class Clock;
class ErrorReport;
class MessageBoxes;
class QWidget;
class dlgControlChart;
class qlxLanguage;

namespace qlaDatabase6 {
class Database;
}

// The open control-chart windows of the program. Each window gets its own connection
// to the SPC database it was opened on; when a monitor stores a subgroup, the windows of
// its part and process read their characteristic again.
class ControlChartWindows
{
public:
    ControlChartWindows(ErrorReport &errors, MessageBoxes &messages, const Clock &clock);
    ~ControlChartWindows();

    // Opens the window of a characteristic of the database named by `dsn`; null, with
    // the reason shown to the user, when the database cannot be opened.
    dlgControlChart *open(const qlxLanguage &language, const QString &dsn,
                          const spc::Characteristic &characteristic, QWidget *parent);
    // Lets the user choose the part, process and test from the database first.
    dlgControlChart *choose(const qlxLanguage &language, const QString &dsn, QWidget *parent);

    // A monitor stored a subgroup of `part` on `process`.
    void subgroupStored(const QString &part, const QString &process);

private:
    std::unique_ptr<qlaDatabase6::Database> connect(const qlxLanguage &language,
                                                    const QString &dsn);

    ErrorReport &m_errors;
    MessageBoxes &m_messages;
    const Clock &m_clock;
    std::vector<QPointer<dlgControlChart>> m_windows;
};

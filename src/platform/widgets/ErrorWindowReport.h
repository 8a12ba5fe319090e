#pragma once

#include "platform/ErrorReport.h"

#include <QPointer>
#include <QString>

class QTreeWidget;
class qlxLanguage;
class QWidget;

// The error report of the desktop program. Each failure is logged by the wrapped
// report and listed in one non-modal window that is shown and raised, never a modal
// box: a link that fails on every arrival must not stack boxes or stop data capture.
// A failure equal to a listed one (same location, number and description) is not
// listed again; its line counts the repeats and shows the latest time.
class ErrorWindowReport : public ErrorReport
{
public:
    // The language object must outlive the report.
    ErrorWindowReport(ErrorReport &log, QString windowTitle, const qlxLanguage &language);
    ~ErrorWindowReport() override;

    void Show(const QString &location, qint32 number, const QString &description,
              const QString &source) override;

    // The window, created on the first report; null before it.
    QWidget *window() const;
    int lineCount() const;

private:
    void createWindow();

    ErrorReport &m_log;
    QString m_windowTitle;
    const qlxLanguage &m_language;
    QPointer<QWidget> m_window;
    QTreeWidget *m_list = nullptr;
};

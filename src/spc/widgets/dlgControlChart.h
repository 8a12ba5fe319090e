#pragma once

#include "ControlChartPlot.h"

#include "spc/ChartSnapshot.h"

#include <QDialog>

#include <functional>
#include <memory>

class Clock;
class ErrorReport;
class Histogram;
class MessageBoxes;
class QCheckBox;
class QDateTimeEdit;
class QGridLayout;
class QLabel;
class QPushButton;
class qlxLanguage;

namespace qlaDatabase6 {
class Database;
}

// The control-chart window of one characteristic: its pair of control charts over a
// chosen stretch of time, the capability figures with their 95 % intervals beside them
// and the histogram of the values against the specification limits. The window has its
// own connection to the SPC database and reads it again when told that a subgroup was
// stored (refresh). From it an engineer freezes the limits of the stretch in view, which
// the live rule check then watches new subgroups against, and exports the charts as a
// PNG or SVG picture.
class dlgControlChart : public QDialog
{
    Q_OBJECT

public:
    // Asks where a picture goes; the suffix is "png" or "svg". Empty: cancelled.
    using FileChooser = std::function<QString(const QString &suffix)>;

    dlgControlChart(std::unique_ptr<qlaDatabase6::Database> database,
                    spc::Characteristic characteristic, const qlxLanguage &language,
                    ErrorReport &errors, MessageBoxes &messages, const Clock &clock,
                    QWidget *parent = nullptr);
    ~dlgControlChart() override;

    void setFileChooser(FileChooser chooser) { m_chooseFile = std::move(chooser); }
    // The stretch shown; an invalid `since` starts at the first subgroup, an invalid
    // `until` follows the latest.
    void setRange(const QDateTime &since, const QDateTime &until);

    const spc::ChartSnapshot &snapshot() const { return m_snapshot; }
    ControlChartPlot *plot() const { return m_plot; }
    Histogram *histogram() const { return m_histogram; }

    // Reads the characteristic's subgroups again and redraws everything.
    void refresh();

    void bnShow_Click();
    void bnFreeze_Click();
    void bnExportPng_Click();
    void bnExportSvg_Click();

private:
    QLabel *addFigure(QGridLayout *grid, const QString &objectName, QStringView caption);
    void translateCaptions();
    void showCapability();
    void showHistogram();
    void exportChart(const QString &suffix);
    QString translate(QStringView token) const;

    std::unique_ptr<qlaDatabase6::Database> m_database;
    const qlxLanguage &m_language;
    ErrorReport &m_errors;
    MessageBoxes &m_messages;
    const Clock &m_clock;
    FileChooser m_chooseFile;
    spc::ChartSnapshot m_snapshot;
    QDateTime m_since;
    QDateTime m_until;

    QLabel *m_lblTitle = nullptr;
    QLabel *m_lblSince = nullptr;
    QLabel *m_lblUntil = nullptr;
    QDateTimeEdit *m_dtpSince = nullptr;
    QDateTimeEdit *m_dtpUntil = nullptr;
    QCheckBox *m_chkLatest = nullptr;
    QPushButton *m_bnShow = nullptr;
    ControlChartPlot *m_plot = nullptr;
    QLabel *m_lblLimits = nullptr;
    QLabel *m_lblSubgroups = nullptr;
    QLabel *m_lblMean = nullptr;
    QLabel *m_lblSigmaWithin = nullptr;
    QLabel *m_lblSigmaOverall = nullptr;
    QLabel *m_lblCp = nullptr;
    QLabel *m_lblCpk = nullptr;
    QLabel *m_lblPp = nullptr;
    QLabel *m_lblPpk = nullptr;
    QLabel *m_lblPpm = nullptr;
    Histogram *m_histogram = nullptr;
    QPushButton *m_bnFreeze = nullptr;
    QPushButton *m_bnExportPng = nullptr;
    QPushButton *m_bnExportSvg = nullptr;
    QPushButton *m_bnClose = nullptr;
};

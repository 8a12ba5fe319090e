#pragma once

#include "stats/SummaryFigures.h"

#include <QDialog>

#include <functional>
#include <memory>

class Dataset;
class ErrorReport;
class Histogram;
class QLabel;
class QPushButton;
class qlxLanguage;

// The summary of one characteristic, shown modally from a monitor row: minimum, maximum
// and average, how many values fell below the lower and above the upper specification
// limit and their total, σ overall, Pp and Ppk of the values against the limits, and the
// histogram of all values. The caller sets the figures
// (setFigures, or fromDataset) before the window is shown; the labels are filled once,
// when it is first shown (Form_Load).
class dlgSummary : public QDialog
{
    Q_OBJECT

public:
    dlgSummary(const qlxLanguage &language, ErrorReport &errors, QWidget *parent = nullptr);
    ~dlgSummary() override;

    // A summary filled from a characteristic's Dataset: its name as title, its limits, its
    // figures, its number format and a copy of its values.
    static std::unique_ptr<dlgSummary> fromDataset(const Dataset &dataset,
                                                   const qlxLanguage &language, ErrorReport &errors,
                                                   QWidget *parent = nullptr);

    void setFigures(SummaryFigures figures);
    const SummaryFigures &figures() const { return m_figures; }

    // Values strictly below LSL and strictly above USL, whatever limit flags the
    // characteristic has.
    qint32 CountLSL() const;
    qint32 CountUSL() const;

    // Fills every label and draws the histogram; a failure is reported and leaves the
    // labels filled so far.
    void Form_Load();
    void bnClose_Click();

    Histogram *histogram() const { return m_histogram; }

    // Opens the control chart of the characteristic from the SPC database. The button
    // shows only where the program gives it something to open.
    void setControlChartOpener(std::function<void()> open);
    void bnControlChart_Click();

protected:
    void showEvent(QShowEvent *event) override;

private:
    QLabel *addCaption(const QString &objectName);
    QLabel *addFigure(const QString &objectName);
    void showCapability();

    const qlxLanguage &m_language;
    ErrorReport &m_errors;
    SummaryFigures m_figures;
    bool m_loaded = false;

    QLabel *m_lblTitle = nullptr;
    QLabel *m_lblMinimumCaption = nullptr;
    QLabel *m_lblMaximumCaption = nullptr;
    QLabel *m_lblAverageCaption = nullptr;
    QLabel *m_lblCountLSLCaption = nullptr;
    QLabel *m_lblCountUSLCaption = nullptr;
    QLabel *m_lblTotalCaption = nullptr;
    QLabel *m_lblMinimum = nullptr;
    QLabel *m_lblMaximum = nullptr;
    QLabel *m_lblAverage = nullptr;
    QLabel *m_lblCountLSL = nullptr;
    QLabel *m_lblCountUSL = nullptr;
    QLabel *m_lblTotal = nullptr;
    QLabel *m_lblSigmaOverallCaption = nullptr;
    QLabel *m_lblPpCaption = nullptr;
    QLabel *m_lblPpkCaption = nullptr;
    QLabel *m_lblSigmaOverall = nullptr;
    QLabel *m_lblPp = nullptr;
    QLabel *m_lblPpk = nullptr;
    QLabel *m_lblCoverage = nullptr;
    Histogram *m_histogram = nullptr;
    QPushButton *m_bnControlChart = nullptr;
    QPushButton *m_bnClose = nullptr;
    std::function<void()> m_openControlChart;
};

#pragma once

#include "spc/ChartLines.h"

#include <qcustomplot.h>

#include <QDateTime>

#include <optional>
#include <utility>

class QCPAxisRect;
class qlxLanguage;
class QCPGraph;

// The pair of control charts of one characteristic: the subgroup means (or individual
// values) above, their ranges, standard deviations or moving ranges below, on one time
// axis. Each chart draws its centre line, control limits and, on the upper one, the
// zone lines at 1σ and 2σ; limits step where the subgroup size changes. A point that
// breaks a rule is drawn as a red square, and hovering over it names the rules; the
// points get dots when few enough are in view to tell apart. Dragging or turning the
// wheel moves and zooms both charts along time.
class ControlChartPlot : public QCustomPlot
{
    Q_OBJECT

public:
    struct Captions
    {
        QString upperTitle;
        QString lowerTitle;
        // "Rule" before the numbers of the rules a point broke.
        QString rule;
        // What a lower-chart point beyond its limits says.
        QString beyondLimits;
        // Shown across the plot when there is no chart to draw.
        QString noChart;
    };

    explicit ControlChartPlot(QWidget *parent = nullptr);

    // The titles and texts of a chart type in the user's language.
    static Captions captionsFor(spc::ChartType type, const qlxLanguage &language);

    // Draws a chart. A time range the user moved to stays, unless forgotten first.
    void setChart(const spc::Chart &chart, const Captions &captions);
    void forgetTimeRange() { m_wholeRange.reset(); }
    const spc::ChartLines &lines() const { return m_lines; }

    // The stretch of time the charts show now.
    std::pair<QDateTime, QDateTime> visibleRange() const;
    // What hovering at pos says: the rules of the marked point under it, or nothing.
    QString markTextAt(const QPoint &pos) const;

    // Draws the charts into a PNG or SVG file (by the name's suffix) of the given size.
    bool exportTo(const QString &fileName, const QSize &size);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    // The red squares of the points that broke a rule, on either chart.
    QCPGraph *upperMarks() const { return m_xMarks; }
    QCPGraph *lowerMarks() const { return m_spreadMarks; }

private:
    QCPGraph *addLine(QCPAxisRect *rect, const spc::ChartLine &line, const QPen &pen);
    QCPGraph *addMarks(QCPAxisRect *rect, const std::vector<spc::MarkedPoint> &marks);
    void showMarkText(QMouseEvent *event);
    void dotVisiblePoints(const QCPRange &range);
    void fitValueAxis(QCPAxisRect *rect, std::initializer_list<const spc::ChartLine *> lines);

    QCPAxisRect *m_upper = nullptr;
    QCPAxisRect *m_lower = nullptr;
    QCPGraph *m_xValues = nullptr;
    QCPGraph *m_spreadValues = nullptr;
    QCPGraph *m_xMarks = nullptr;
    QCPGraph *m_spreadMarks = nullptr;
    QCPItemText *m_noChart = nullptr;
    spc::ChartLines m_lines;
    // The time range that shows every subgroup of the last chart.
    std::optional<QCPRange> m_wholeRange;
    Captions m_captions;
};

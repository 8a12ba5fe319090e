#include "ControlChartPlot.h"

#include "ChartCaptions.h"

#include "platform/qlxLanguage.h"

#include <QSvgGenerator>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace {

// How near the pointer must come to a marked point for its rules to show.
constexpr double kHoverPixels = 6.0;
constexpr double kMarkSize = 8.0;
// Up to this many subgroups in view each gets a dot; more would only blur the line, and
// drawing thousands of dots costs more than the whole rest of the chart.
constexpr qsizetype kDottedPoints = 400;

const QColor kValueColor(0x1f, 0x4e, 0x9a);
const QColor kCentreColor(0x2e, 0x7d, 0x32);
const QColor kLimitColor(0xc6, 0x28, 0x28);
const QColor kZoneColor(0xd0, 0x90, 0x20);

void styleAxes(QCPAxisRect *rect)
{
    QSharedPointer<QCPAxisTickerDateTime> ticker(new QCPAxisTickerDateTime);
    ticker->setDateTimeFormat(QStringLiteral("dd.MM.\nHH:mm"));
    ticker->setDateTimeSpec(Qt::LocalTime);
    rect->axis(QCPAxis::atBottom)->setTicker(ticker);
    rect->setRangeDrag(Qt::Horizontal);
    rect->setRangeZoom(Qt::Horizontal);
}

} // namespace

ControlChartPlot::ControlChartPlot(QWidget *parent)
    : QCustomPlot(parent)
{
    setInteractions(QCP::iRangeDrag | QCP::iRangeZoom);
    plotLayout()->clear();
    m_upper = new QCPAxisRect(this);
    m_lower = new QCPAxisRect(this);
    plotLayout()->addElement(0, 0, m_upper);
    plotLayout()->addElement(1, 0, m_lower);
    // The upper chart carries the rules and gets the larger share of the height.
    plotLayout()->setRowStretchFactors({3, 2});
    // Both time axes start and end at the same place, whatever their value labels take.
    auto *margins = new QCPMarginGroup(this);
    m_upper->setMarginGroup(QCP::msLeft | QCP::msRight, margins);
    m_lower->setMarginGroup(QCP::msLeft | QCP::msRight, margins);
    styleAxes(m_upper);
    styleAxes(m_lower);
    connect(m_upper->axis(QCPAxis::atBottom), qOverload<const QCPRange &>(&QCPAxis::rangeChanged),
            m_lower->axis(QCPAxis::atBottom), qOverload<const QCPRange &>(&QCPAxis::setRange));
    connect(m_lower->axis(QCPAxis::atBottom), qOverload<const QCPRange &>(&QCPAxis::rangeChanged),
            m_upper->axis(QCPAxis::atBottom), qOverload<const QCPRange &>(&QCPAxis::setRange));
    connect(m_upper->axis(QCPAxis::atBottom), qOverload<const QCPRange &>(&QCPAxis::rangeChanged),
            this, &ControlChartPlot::dotVisiblePoints);
    connect(this, &QCustomPlot::mouseMove, this, &ControlChartPlot::showMarkText);
    setMouseTracking(true);
}

ControlChartPlot::Captions ControlChartPlot::captionsFor(spc::ChartType type,
                                                         const qlxLanguage &language)
{
    Captions captions;
    captions.upperTitle =
        language.Translate(type == spc::ChartType::IndividualsMR ? ChartCaptions::kIndividuals
                                                                 : ChartCaptions::kMeans);
    switch (type) {
    case spc::ChartType::XbarR:
        captions.lowerTitle = language.Translate(ChartCaptions::kRange);
        break;
    case spc::ChartType::XbarS:
        captions.lowerTitle = language.Translate(ChartCaptions::kStdDev);
        break;
    case spc::ChartType::IndividualsMR:
        captions.lowerTitle = language.Translate(ChartCaptions::kMovingRange);
        break;
    }
    captions.rule = language.Translate(ChartCaptions::kRule);
    captions.beyondLimits = language.Translate(ChartCaptions::kBeyondLimits);
    captions.noChart = language.Translate(ChartCaptions::kNotEnoughData);
    return captions;
}

QSize ControlChartPlot::sizeHint() const
{
    return {900, 560};
}

QSize ControlChartPlot::minimumSizeHint() const
{
    return {360, 240};
}

QCPGraph *ControlChartPlot::addLine(QCPAxisRect *rect, const spc::ChartLine &line, const QPen &pen)
{
    QCPGraph *graph = addGraph(rect->axis(QCPAxis::atBottom), rect->axis(QCPAxis::atLeft));
    graph->setData(QVector<double>(line.keys.begin(), line.keys.end()),
                   QVector<double>(line.values.begin(), line.values.end()), true);
    graph->setPen(pen);
    return graph;
}

QCPGraph *ControlChartPlot::addMarks(QCPAxisRect *rect, const std::vector<spc::MarkedPoint> &marks)
{
    spc::ChartLine points;
    for (const spc::MarkedPoint &m : marks)
        points.append(m.key, m.value);
    QCPGraph *graph = addLine(rect, points, Qt::NoPen);
    graph->setLineStyle(QCPGraph::lsNone);
    graph->setScatterStyle(
        QCPScatterStyle(QCPScatterStyle::ssSquare, kLimitColor, kLimitColor, kMarkSize));
    return graph;
}

void ControlChartPlot::fitValueAxis(QCPAxisRect *rect,
                                    std::initializer_list<const spc::ChartLine *> lines)
{
    double low = qInf();
    double high = -qInf();
    for (const spc::ChartLine *line : lines)
        for (double v : line->values) {
            low = std::min(low, v);
            high = std::max(high, v);
        }
    if (!(low <= high))
        return;
    // A margin so that points on a limit are not cut by the frame.
    const double margin = high > low ? (high - low) * 0.06 : std::max(std::abs(high) * 0.01, 1.0);
    rect->axis(QCPAxis::atLeft)->setRange(low - margin, high + margin);
}

void ControlChartPlot::setChart(const spc::Chart &chart, const Captions &captions)
{
    clearGraphs();
    clearItems();
    m_noChart = nullptr;
    m_captions = captions;
    m_lines = spc::ChartLines::of(chart);
    m_upper->axis(QCPAxis::atLeft)->setLabel(captions.upperTitle);
    m_lower->axis(QCPAxis::atLeft)->setLabel(captions.lowerTitle);
    m_xMarks = nullptr;
    m_spreadMarks = nullptr;
    m_xValues = nullptr;
    m_spreadValues = nullptr;

    if (m_lines.x.keys.empty()) {
        m_noChart = new QCPItemText(this);
        m_noChart->setClipAxisRect(m_upper);
        m_noChart->position->setType(QCPItemPosition::ptAxisRectRatio);
        m_noChart->position->setAxisRect(m_upper);
        m_noChart->position->setCoords(0.5, 0.5);
        m_noChart->setText(captions.noChart);
        replot(rpQueuedReplot);
        return;
    }
    // Whole-pixel pens: a fractional width sends every segment through the slow stroker.
    const QPen limit(kLimitColor, 1, Qt::DashLine);
    const QPen zone(kZoneColor, 1, Qt::DotLine);
    for (const spc::ChartLine &z : m_lines.zones)
        addLine(m_upper, z, zone)->setLineStyle(QCPGraph::lsStepCenter);
    addLine(m_upper, m_lines.xUpper, limit)->setLineStyle(QCPGraph::lsStepCenter);
    addLine(m_upper, m_lines.xLower, limit)->setLineStyle(QCPGraph::lsStepCenter);
    addLine(m_upper, m_lines.xCentre, QPen(kCentreColor, 2))->setLineStyle(QCPGraph::lsStepCenter);
    m_xValues = addLine(m_upper, m_lines.x, QPen(kValueColor, 1));
    m_xMarks = addMarks(m_upper, m_lines.xMarked);

    addLine(m_lower, m_lines.spreadUpper, limit)->setLineStyle(QCPGraph::lsStepCenter);
    addLine(m_lower, m_lines.spreadLower, limit)->setLineStyle(QCPGraph::lsStepCenter);
    addLine(m_lower, m_lines.spreadCentre, QPen(kCentreColor, 2))
        ->setLineStyle(QCPGraph::lsStepCenter);
    m_spreadValues = addLine(m_lower, m_lines.spread, QPen(kValueColor, 1));
    m_spreadMarks = addMarks(m_lower, m_lines.spreadMarked);

    // Half a sampling period of room at either end, so the first and last points show. A
    // stretch the engineer dragged or zoomed to stays in view when a new subgroup comes.
    QCPAxis *time = m_upper->axis(QCPAxis::atBottom);
    const bool moved = m_wholeRange && time->range() != *m_wholeRange;
    const double first = m_lines.x.keys.front();
    const double last = m_lines.x.keys.back();
    const double room = last > first ? (last - first) / double(2 * m_lines.x.keys.size()) : 60.0;
    m_wholeRange = QCPRange(first - room, last + room);
    if (!moved)
        time->setRange(*m_wholeRange);
    fitValueAxis(m_upper, {&m_lines.x, &m_lines.xUpper, &m_lines.xLower});
    fitValueAxis(m_lower, {&m_lines.spread, &m_lines.spreadUpper, &m_lines.spreadLower});
    dotVisiblePoints(m_upper->axis(QCPAxis::atBottom)->range());
    replot(rpQueuedReplot);
}

void ControlChartPlot::dotVisiblePoints(const QCPRange &range)
{
    if (!m_xValues || !m_spreadValues)
        return;
    const std::vector<double> &keys = m_lines.x.keys;
    const auto first = std::lower_bound(keys.begin(), keys.end(), range.lower);
    const auto last = std::upper_bound(first, keys.end(), range.upper);
    const QCPScatterStyle style = last - first <= kDottedPoints
                                      ? QCPScatterStyle(QCPScatterStyle::ssDisc, 4)
                                      : QCPScatterStyle();
    m_xValues->setScatterStyle(style);
    m_spreadValues->setScatterStyle(style);
}

std::pair<QDateTime, QDateTime> ControlChartPlot::visibleRange() const
{
    const QCPRange range = m_upper->axis(QCPAxis::atBottom)->range();
    return {spc::ChartLines::timeOf(range.lower), spc::ChartLines::timeOf(range.upper)};
}

QString ControlChartPlot::markTextAt(const QPoint &pos) const
{
    const auto near = [&](QCPAxisRect *rect, const spc::MarkedPoint &m) {
        const double x = rect->axis(QCPAxis::atBottom)->coordToPixel(m.key);
        const double y = rect->axis(QCPAxis::atLeft)->coordToPixel(m.value);
        return std::hypot(x - pos.x(), y - pos.y()) <= kHoverPixels;
    };
    for (const spc::MarkedPoint &m : m_lines.xMarked)
        if (near(m_upper, m))
            return m_captions.rule + u' ' + m.rules.text();
    for (const spc::MarkedPoint &m : m_lines.spreadMarked)
        if (near(m_lower, m))
            return m_captions.beyondLimits;
    return {};
}

void ControlChartPlot::showMarkText(QMouseEvent *event)
{
    const QString text = markTextAt(event->pos());
    if (text.isEmpty())
        QToolTip::hideText();
    else
        QToolTip::showText(event->globalPosition().toPoint(), text, this);
}

bool ControlChartPlot::exportTo(const QString &fileName, const QSize &size)
{
    if (!fileName.endsWith(QStringLiteral(".svg"), Qt::CaseInsensitive))
        return savePng(fileName, size.width(), size.height());
    QSvgGenerator generator;
    generator.setFileName(fileName);
    generator.setSize(size);
    generator.setViewBox(QRect(QPoint(0, 0), size));
    // Browsers take a CSS pixel as 1/96 inch: the picture opens at its pixel size.
    generator.setResolution(96);
    QCPPainter painter;
    if (!painter.begin(&generator))
        return false;
    toPainter(&painter, size.width(), size.height());
    return painter.end();
}

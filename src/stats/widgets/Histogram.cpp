#include "Histogram.h"

#include "BgrColor.h"
#include "platform/ErrorPassing.h"
#include "stats/LimitOrder.h"

#include <QPainter>

#include <algorithm>

namespace {

const QString kLimitsCrossed = QStringLiteral("Invalid Value! LimitLower > LimitUpper!");

constexpr int kMargin = 4;
constexpr int kTickLength = 4;

} // namespace

Histogram::Histogram(QWidget *parent)
    : QWidget(parent)
    , m_barColor(BgrColor::toColor(BgrColor::kGreen))
    , m_limitLowerColor(m_barColor)
    , m_limitUpperColor(m_barColor)
    , m_warningLowerColor(m_barColor)
    , m_warningUpperColor(m_barColor)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    Refresh();
}

Histogram::~Histogram() = default;

void Histogram::setErrorReport(ErrorReport *report)
{
    m_errors = report ? report : &m_ownErrors;
}

void Histogram::assignLimitLower(double value, const char *procedure)
{
    if (value > m_limitUpper)
        throw ProgramError::raised(kLimitsCrossed, QLatin1String(procedure));
    m_limitLower = value;
}

void Histogram::assignLimitUpper(double value, const char *procedure)
{
    if (value < m_limitLower)
        throw ProgramError::raised(kLimitsCrossed, QLatin1String(procedure));
    m_limitUpper = value;
}

void Histogram::setLimitLower(double value)
{
    assignLimitLower(value, "Histogram.LimitLower");
    propertyChanged(Change::Recount);
}

void Histogram::setLimitUpper(double value)
{
    assignLimitUpper(value, "Histogram.LimitUpper");
    propertyChanged(Change::Recount);
}

void Histogram::setLimits(double lower, double upper)
{
    if (lower > upper)
        throw ProgramError::raised(kLimitsCrossed, QStringLiteral("Histogram.setLimits"));
    if (safeLimitOrder(m_limitUpper, lower) == LimitOrder::UpperFirst) {
        assignLimitUpper(upper, "Histogram.setLimits");
        assignLimitLower(lower, "Histogram.setLimits");
    } else {
        assignLimitLower(lower, "Histogram.setLimits");
        assignLimitUpper(upper, "Histogram.setLimits");
    }
    propertyChanged(Change::Recount);
}

void Histogram::setWarningLower(double value)
{
    m_warningLower = value;
    propertyChanged(Change::Recolour);
}

void Histogram::setWarningUpper(double value)
{
    m_warningUpper = value;
    propertyChanged(Change::Recolour);
}

void Histogram::setBarColor(const QColor &color)
{
    m_barColor = color;
    propertyChanged(Change::Recolour);
}

void Histogram::setLimitLowerColor(const QColor &color)
{
    m_limitLowerColor = color;
    propertyChanged(Change::Recolour);
}

void Histogram::setLimitUpperColor(const QColor &color)
{
    m_limitUpperColor = color;
    propertyChanged(Change::Recolour);
}

void Histogram::setWarningLowerColor(const QColor &color)
{
    m_warningLowerColor = color;
    propertyChanged(Change::Recolour);
}

void Histogram::setWarningUpperColor(const QColor &color)
{
    m_warningUpperColor = color;
    propertyChanged(Change::Recolour);
}

void Histogram::setNumberFormat(const QString &picture)
{
    m_picture = NumberPicture(picture);
    propertyChanged(Change::Redraw);
}

void Histogram::setAutoRefresh(bool autoRefresh)
{
    m_autoRefresh = autoRefresh;
}

void Histogram::setValues(const QVector<double> &values, const QVector<ValueCount> &folded)
{
    m_values = values;
    m_folded = folded;
    propertyChanged(Change::Recount);
}

void Histogram::setEmptyText(const QString &text)
{
    m_emptyText = text;
    update();
}

void Histogram::propertyChanged(Change change)
{
    if (!m_autoRefresh)
        return;
    reportFailures(*m_errors, "Histogram.PropertyChanged", [&] {
        if (change == Change::Recount)
            LoadHistoBins();
        if (change != Change::Redraw)
            ColorBars();
        update();
    });
}

void Histogram::Refresh()
{
    reportFailures(*m_errors, "Histogram.Refresh", [this] {
        LoadHistoBins();
        ColorBars();
        update();
    });
}

void Histogram::LoadHistoBins()
{
    passOn("Histogram.LoadHistoBins", [this] {
        m_bins = ::LoadHistoBins(std::span<const double>(m_values.constData(), m_values.size()),
                                 m_limitLower, m_limitUpper, m_folded);
    });
}

HistogramColors Histogram::colors() const
{
    HistogramColors colors;
    colors.bar = BgrColor::fromColor(m_barColor);
    colors.limitLower = BgrColor::fromColor(m_limitLowerColor);
    colors.limitUpper = BgrColor::fromColor(m_limitUpperColor);
    colors.warningLower = BgrColor::fromColor(m_warningLowerColor);
    colors.warningUpper = BgrColor::fromColor(m_warningUpperColor);
    return colors;
}

void Histogram::ColorBars()
{
    passOn("Histogram.ColorBars", [this] {
        const HistogramLimits limits{m_limitLower, m_limitUpper, WarningLower(), WarningUpper()};
        m_barColors = ::ColorBars(m_bins, limits, colors());
    });
}

QRect Histogram::plotRect() const
{
    // Room below the plot for the limit ticks and labels.
    const int labelBand = kTickLength + fontMetrics().height();
    return rect().adjusted(kMargin, kMargin, -kMargin, -kMargin - labelBand);
}

HistogramBars Histogram::bars() const
{
    const QRect plot = plotRect();
    return AdjustBars(plot.width(), plot.height(), m_bins);
}

QRect Histogram::barRect(int index) const
{
    if (index < 0 || index >= int(m_bins.size()))
        return QRect();
    const QRect plot = plotRect();
    const HistogramBars layout = AdjustBars(plot.width(), plot.height(), m_bins);
    const HistogramBin &bin = m_bins[size_t(index)];
    if (!layout.scale || bin.count == 0 || layout.barWidth == 0)
        return QRect();
    // A bin with any value shows at least one pixel, however tall the fullest bin is.
    const int height = std::max(1, qRound(layout.barHeight(bin)));
    return QRect(plot.left() + layout.barLeft(index), plot.bottom() + 1 - height, layout.barWidth,
                 height);
}

QSize Histogram::sizeHint() const
{
    return QSize(480, 240);
}

QSize Histogram::minimumSizeHint() const
{
    return QSize(22 * 3 + 20 + 2 * kMargin, 80);
}

void Histogram::paintEvent(QPaintEvent *)
{
    reportFailures(*m_errors, "Histogram.Paint", [this] {
        QPainter painter(this);
        painter.fillRect(rect(), palette().color(QPalette::Base));
        painter.setPen(palette().color(QPalette::Mid));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));

        const QRect plot = plotRect();
        if (m_values.isEmpty() && m_folded.isEmpty() && !m_emptyText.isEmpty()) {
            painter.setPen(palette().color(QPalette::PlaceholderText));
            painter.drawText(plot, Qt::AlignCenter | Qt::TextWordWrap, m_emptyText);
        }
        if (m_bins.empty() || plot.width() <= 0 || plot.height() <= 0)
            return;
        const HistogramBars layout = AdjustBars(plot.width(), plot.height(), m_bins);
        drawBars(painter, plot, layout);
        drawLimitMarkers(painter, plot, layout);
    });
}

void Histogram::drawBars(QPainter &painter, const QRect &plot, const HistogramBars &layout) const
{
    // Counts stand over the bars when every count fits its bar; a row where only some
    // bars carry their count would read as if the others had none.
    const QFontMetrics metrics = fontMetrics();
    qint64 largest = 0;
    for (const HistogramBin &bin : m_bins)
        largest = std::max(largest, bin.count);
    const bool countsFit =
        metrics.horizontalAdvance(QString::number(largest)) + 2 <= layout.barWidth;

    const QColor ink = palette().color(QPalette::Text);
    for (int i = 0; i < int(m_bins.size()); ++i) {
        const QRect bar = barRect(i);
        if (bar.isEmpty())
            continue;
        const QColor fill = BgrColor::toColor(m_barColors[size_t(i)]);
        painter.fillRect(bar, fill);
        painter.setPen(fill.darker(160));
        painter.drawRect(bar.adjusted(0, 0, -1, -1));

        // The fullest bar leaves a fifth of the plot free above it for its count.
        const QRect countRect(bar.left(), bar.top() - metrics.height(), bar.width(),
                              metrics.height());
        if (countsFit && countRect.top() >= plot.top()) {
            painter.setPen(ink);
            painter.drawText(countRect, Qt::AlignHCenter | Qt::AlignBottom,
                             QString::number(m_bins[size_t(i)].count));
        }
        const QRect mark = farValuesMark(i);
        if (!mark.isEmpty()) {
            const bool left = i == 0;
            const QPolygon arrow{QPoint(left ? mark.left() : mark.right(), mark.center().y()),
                                 QPoint(left ? mark.right() : mark.left(), mark.top()),
                                 QPoint(left ? mark.right() : mark.left(), mark.bottom())};
            painter.setPen(Qt::NoPen);
            painter.setBrush(ink);
            painter.drawPolygon(arrow);
            painter.setBrush(Qt::NoBrush);
        }
    }
    painter.setPen(palette().color(QPalette::Dark));
    const int rowWidth = kHistogramBinCount * layout.barWidth;
    painter.drawLine(plot.left() + layout.leftOffset, plot.bottom() + 1,
                     plot.left() + layout.leftOffset + rowWidth - 1, plot.bottom() + 1);
}

QRect Histogram::farValuesMark(int index) const
{
    if (index < 0 || index >= int(m_bins.size()) || !m_bins[size_t(index)].holdsFarValues)
        return {};
    const QRect bar = barRect(index);
    if (bar.isEmpty())
        return {};
    // Inside the bar's foot, where the bar always has room, whatever its height.
    const int side = std::max(3, std::min(bar.width() - 2, bar.height() - 2));
    return QRect(bar.center().x() - side / 2, bar.bottom() - side, side, side);
}

void Histogram::drawLimitMarkers(QPainter &painter, const QRect &plot,
                                 const HistogramBars &layout) const
{
    const double low = m_bins.front().lowerEdge;
    const double high = m_bins.back().upperEdge;
    const int rowWidth = kHistogramBinCount * layout.barWidth;
    const QFontMetrics metrics = fontMetrics();
    const QColor ink = palette().color(QPalette::Text);

    const auto marker = [&](double limit) {
        const int x = plot.left() + layout.leftOffset +
                      qRound((limit - low) / (high - low) * double(rowWidth));
        QPen pen(ink, 1, Qt::DashLine);
        pen.setCosmetic(true);
        painter.setPen(pen);
        painter.drawLine(x, plot.top(), x, plot.bottom() + kTickLength);

        const QString text = m_picture.format(limit, locale());
        const int width = metrics.horizontalAdvance(text);
        const int left =
            std::clamp(x - width / 2, kMargin, std::max(kMargin, this->width() - kMargin - width));
        painter.setPen(ink);
        painter.drawText(QRect(left, plot.bottom() + 1 + kTickLength, width, metrics.height()),
                         Qt::AlignCenter, text);
    };
    marker(m_limitLower);
    marker(m_limitUpper);
}

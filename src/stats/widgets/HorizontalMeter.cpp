#include "HorizontalMeter.h"

#include "StatsCaptions.h"
#include "platform/ErrorPassing.h"
#include "platform/qlxLanguage.h"
#include "stats/LimitOrder.h"

#include <QEvent>
#include <QPaintEngine>
#include <QPaintEvent>
#include <QPainter>

#include <algorithm>

namespace {

const QString kLimitsCrossed = QStringLiteral("Invalid Value! LimitLower > LimitUpper!");

// The triangle's rows in the marker box's own pixels: apex dot at (5, 1), then lines
// widening by one pixel at each side down to (1, 5)-(9, 5).
constexpr int kTriangleRows = 5;
// Rows under the bar that the triangles take, plus one pixel of air above the labels.
constexpr int kMarkerRowHeight = kTriangleRows + 1;
// Rows of this height make the markers and labels one size larger.
constexpr int kScaleStep = 40;
constexpr int kMaxScale = 3;
// A thicker bar reads no better; spare height is shared above and below.
constexpr int kMaxBarHeight = 28;
constexpr int kMinBarHeight = 6;

// Markers are painted so that the current value lies on top of the running figures.
constexpr std::array<MeterMarker, kMeterMarkerCount> kPaintOrder = {
    MeterMarker::Minimum, MeterMarker::Maximum, MeterMarker::Average, MeterMarker::Current};

// A one-unit line just inside a rectangle, drawn as filled strips so that it covers whole
// device pixels at any pixel ratio.
void drawOutline(QPainter &painter, const QRect &rect, const QColor &color)
{
    painter.fillRect(QRect(rect.left(), rect.top(), rect.width(), 1), color);
    painter.fillRect(QRect(rect.left(), rect.bottom(), rect.width(), 1), color);
    painter.fillRect(QRect(rect.left(), rect.top(), 1, rect.height()), color);
    painter.fillRect(QRect(rect.right(), rect.top(), 1, rect.height()), color);
}

} // namespace

HorizontalMeter::HorizontalMeter(QWidget *parent)
    : QWidget(parent)
    , m_colorMeter(palette().color(QPalette::Button))
{
    m_markerColors.fill(QColor(Qt::black));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    runLayout();
}

HorizontalMeter::~HorizontalMeter() = default;

void HorizontalMeter::setErrorReport(ErrorReport *report)
{
    m_errors = report ? report : &m_ownErrors;
}

void HorizontalMeter::setLanguage(const qlxLanguage *language)
{
    m_language = language;
    updateToolTip();
}

void HorizontalMeter::assignLimitUpper(double value, const char *procedure)
{
    if (value < m_limitLower)
        throw ProgramError::raised(kLimitsCrossed, QLatin1String(procedure));
    m_limitUpper = value;
}

void HorizontalMeter::assignLimitLower(double value, const char *procedure)
{
    if (value > m_limitUpper)
        throw ProgramError::raised(kLimitsCrossed, QLatin1String(procedure));
    m_limitLower = value;
}

void HorizontalMeter::setLimitUpper(double value)
{
    assignLimitUpper(value, "HorizontalMeter.LimitUpper");
    propertyChanged();
}

void HorizontalMeter::setLimitLower(double value)
{
    assignLimitLower(value, "HorizontalMeter.LimitLower");
    propertyChanged();
}

void HorizontalMeter::setLimits(double lower, double upper)
{
    if (lower > upper)
        throw ProgramError::raised(kLimitsCrossed, QStringLiteral("HorizontalMeter.setLimits"));
    if (safeLimitOrder(m_limitUpper, lower) == LimitOrder::UpperFirst) {
        assignLimitUpper(upper, "HorizontalMeter.setLimits");
        assignLimitLower(lower, "HorizontalMeter.setLimits");
    } else {
        assignLimitLower(lower, "HorizontalMeter.setLimits");
        assignLimitUpper(upper, "HorizontalMeter.setLimits");
    }
    propertyChanged();
}

void HorizontalMeter::setValue(MeterMarker marker, double value)
{
    m_values[meterMarkerIndex(marker)] = value;
    propertyChanged();
}

void HorizontalMeter::setNumberFormat(const QString &picture)
{
    m_picture = NumberPicture(picture);
    propertyChanged();
}

void HorizontalMeter::setUnit(const QString &unit)
{
    m_unit = unit;
    propertyChanged();
}

void HorizontalMeter::setHideLimitUpper(bool hide)
{
    m_hideLimitUpper = hide;
    propertyChanged();
}

void HorizontalMeter::setHideLimitLower(bool hide)
{
    m_hideLimitLower = hide;
    propertyChanged();
}

void HorizontalMeter::setColorMeter(const QColor &color)
{
    m_colorMeter = color;
    propertyChanged();
}

void HorizontalMeter::setMarkerColor(MeterMarker marker, const QColor &color)
{
    m_markerColors[meterMarkerIndex(marker)] = color;
    propertyChanged();
}

void HorizontalMeter::setShowBorder(bool show)
{
    m_showBorder = show;
    propertyChanged();
}

void HorizontalMeter::setAutoRefresh(bool autoRefresh)
{
    m_autoRefresh = autoRefresh;
    propertyChanged();
}

void HorizontalMeter::setMeterEnabled(bool enabled)
{
    m_meterEnabled = enabled;
    propertyChanged();
}

void HorizontalMeter::propertyChanged()
{
    if (m_autoRefresh)
        runLayout();
}

void HorizontalMeter::Refresh()
{
    runLayout();
}

void HorizontalMeter::runLayout()
{
    // A failed layout leaves the face as it was last drawn.
    reportFailures(*m_errors, "HorizontalMeter.Layout", [this] {
        m_layoutSize = size();
        Face face = layoutFace();
        if (!(face.frame == m_face.frame))
            m_frameStale = true;
        m_face = std::move(face);
        updateToolTip();
        update();
    });
}

HorizontalMeter::Face HorizontalMeter::layoutFace()
{
    Face face;
    face.frame.border = m_showBorder;
    face.frame.lowerLabelShown = !m_hideLimitLower && m_meterEnabled;
    face.frame.upperLabelShown = !m_hideLimitUpper && m_meterEnabled;
    face.frame.unitShown = !m_unit.isEmpty() && m_meterEnabled;
    face.frame.lowerLabel = m_picture.format(m_limitLower, locale());
    face.frame.upperLabel = m_picture.format(m_limitUpper, locale());
    face.frame.unit = m_unit;
    face.frame.barColor = m_colorMeter;

    MeterLayout::Input input;
    input.barWidth = geometry().bar.width();
    input.markerWidth = kMarkerWidth * markerScale();
    input.limitLower = m_limitLower;
    input.limitUpper = m_limitUpper;
    input.values = m_values;
    m_layout.place(input);

    face.markersShown = m_meterEnabled;
    face.markerColors = m_markerColors;
    for (int i = 0; i < kMeterMarkerCount; ++i) {
        face.markerLeft[i] = m_layout.markerLeft(static_cast<MeterMarker>(i));
        face.valueTexts[i] = valueText(m_values[i]);
    }
    return face;
}

QString HorizontalMeter::valueText(double value) const
{
    return m_picture.format(value, locale()) + u' ' + m_unit;
}

void HorizontalMeter::updateToolTip()
{
    if (!m_face.markersShown) {
        setToolTip(QString());
        return;
    }
    const auto caption = [this](QStringView token) {
        return m_language ? m_language->Translate(token)
                          : qlxLanguage::defaultText(token).toString();
    };
    const auto line = [&](QStringView token, MeterMarker marker) {
        return caption(token) + QStringLiteral(": ") +
               m_face.valueTexts[meterMarkerIndex(marker)].trimmed();
    };
    setToolTip(line(StatsCaptions::kLastValue, MeterMarker::Current) + u'\n' +
               line(StatsCaptions::kMinimum, MeterMarker::Minimum) + u'\n' +
               line(StatsCaptions::kAverage, MeterMarker::Average) + u'\n' +
               line(StatsCaptions::kMaximum, MeterMarker::Maximum));
}

HorizontalMeter::Geometry HorizontalMeter::geometry() const
{
    const QRect content = m_showBorder ? rect().adjusted(1, 1, -1, -1) : rect();
    const int textHeight = QFontMetrics(labelFont()).height();
    const int markerRows = kMarkerRowHeight * markerScale();
    const int barHeight =
        std::clamp(content.height() - 1 - markerRows - textHeight, kMinBarHeight, kMaxBarHeight);
    const int blockHeight = 1 + barHeight + markerRows + textHeight;
    const int top = content.top() + std::max(0, (content.height() - blockHeight) / 2);

    Geometry geometry;
    geometry.bar = QRect(content.left(), top + 1, content.width(), barHeight);
    // The box's first row is blank, so the apex lands on the first row under the bar.
    geometry.markerTop = geometry.bar.bottom();
    geometry.labels =
        QRect(content.left(), geometry.bar.bottom() + 1 + markerRows, content.width(), textHeight);
    return geometry;
}

QRect HorizontalMeter::barRect() const
{
    return geometry().bar;
}

QRect HorizontalMeter::markerBox(MeterMarker marker) const
{
    const Geometry g = geometry();
    const int left = g.bar.left() + qRound(m_face.markerLeft[meterMarkerIndex(marker)]);
    return QRect(left, g.markerTop, kMarkerWidth * markerScale(), kMarkerHeight * markerScale());
}

int HorizontalMeter::markerScale() const
{
    return std::clamp(height() / kScaleStep, 1, kMaxScale);
}

QFont HorizontalMeter::labelFont() const
{
    QFont labels = font();
    if (markerScale() > 1)
        labels.setPointSizeF(labels.pointSizeF() * (1 + 0.3 * (markerScale() - 1)));
    return labels;
}

QSize HorizontalMeter::sizeHint() const
{
    const int textHeight = fontMetrics().height();
    return QSize(400, std::max(48, 2 + 20 + kMarkerRowHeight + textHeight + 2));
}

QSize HorizontalMeter::minimumSizeHint() const
{
    // Narrower, the two limit labels and the unit between them run into each other.
    const QFontMetrics metrics = fontMetrics();
    const int label = metrics.horizontalAdvance(QStringLiteral("-0000.0000"));
    const int width = 2 * label + metrics.horizontalAdvance(QStringLiteral("mm/s")) +
                      4 * metrics.averageCharWidth();
    return QSize(width, 1 + kMinBarHeight + kMarkerRowHeight + metrics.height());
}

void HorizontalMeter::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    // Rendering a hidden meter (a grab, a print) sends it resize events of an unchanged
    // size; those must not lay out properties that the owner has not refreshed yet.
    if (size() != m_layoutSize)
        runLayout();
}

void HorizontalMeter::changeEvent(QEvent *event)
{
    switch (event->type()) {
    case QEvent::PaletteChange:
    case QEvent::FontChange:
    case QEvent::StyleChange:
        m_frameStale = true;
        update();
        break;
    case QEvent::LocaleChange:
        // Decimal separators of the labels change with the locale.
        runLayout();
        break;
    default:
        break;
    }
    QWidget::changeEvent(event);
}

void HorizontalMeter::paintEvent(QPaintEvent *)
{
    reportFailures(*m_errors, "HorizontalMeter.Paint", [this] {
        QPainter painter(this);
        // The device actually painted on: a backing store, or an image that a grab or a
        // print renders into at its own pixel ratio.
        const qreal ratio = painter.paintEngine()->paintDevice()->devicePixelRatioF();
        if (m_frameStale || m_frameCache.size() != size() * ratio ||
            m_frameCache.devicePixelRatio() != ratio)
            rebuildFrame(ratio);
        painter.drawPixmap(0, 0, m_frameCache);
        if (!m_face.markersShown)
            return;
        for (const MeterMarker marker : kPaintOrder)
            drawMarker(painter, markerBox(marker), m_face.markerColors[meterMarkerIndex(marker)]);
    });
}

void HorizontalMeter::drawMarker(QPainter &painter, const QRect &box, const QColor &color) const
{
    const int scale = markerScale();
    for (int row = 1; row <= kTriangleRows; ++row) {
        const int halfWidth = (row - 1) * scale;
        painter.fillRect(QRect(box.left() + 5 * scale - halfWidth, box.top() + row * scale,
                               2 * halfWidth + scale, scale),
                         color);
    }
}

void HorizontalMeter::rebuildFrame(qreal devicePixelRatio)
{
    m_frameCache = QPixmap(size() * devicePixelRatio);
    m_frameCache.setDevicePixelRatio(devicePixelRatio);
    m_frameCache.fill(palette().color(QPalette::Window));
    m_frameStale = false;

    QPainter painter(&m_frameCache);
    const Face::Frame &frame = m_face.frame;
    const Geometry g = geometry();
    const QColor ink = palette().color(QPalette::WindowText);

    if (frame.border)
        drawOutline(painter, rect(), palette().color(QPalette::Dark));

    painter.fillRect(g.bar, frame.barColor);
    drawOutline(painter, g.bar, palette().color(QPalette::Shadow));

    painter.setFont(labelFont());
    const QFontMetrics metrics = painter.fontMetrics();
    const auto drawLimit = [&](double position, const QString &text) {
        const int x = g.bar.left() + qRound(position);
        // Two companion marks: a line across the bar and a tick below it.
        painter.fillRect(QRect(x, g.bar.top(), 1, g.bar.height()), ink);
        painter.fillRect(QRect(x, g.bar.bottom() + 1, 1, 3), ink);
        const int textWidth = metrics.horizontalAdvance(text);
        const int left = std::clamp(x - textWidth / 2, g.labels.left() + 1,
                                    std::max(g.labels.left() + 1, g.labels.right() - textWidth));
        painter.setPen(ink);
        painter.drawText(QRect(left, g.labels.top(), textWidth, g.labels.height()),
                         Qt::AlignLeft | Qt::AlignVCenter, text);
    };
    if (frame.lowerLabelShown)
        drawLimit(MeterLayout::lowerLimitPosition(g.bar.width()), frame.lowerLabel);
    if (frame.upperLabelShown)
        drawLimit(MeterLayout::upperLimitPosition(g.bar.width()), frame.upperLabel);
    if (frame.unitShown) {
        painter.setPen(ink);
        painter.drawText(g.labels, Qt::AlignHCenter | Qt::AlignVCenter, frame.unit);
    }
}

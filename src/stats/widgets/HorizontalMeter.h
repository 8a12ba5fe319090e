#pragma once

#include "WidgetErrorReport.h"
#include "stats/MeterLayout.h"
#include "stats/NumberPicture.h"

#include <QColor>
#include <QPixmap>
#include <QWidget>

#include <array>

class ErrorReport;
class QPainter;
class qlxLanguage;

// Shows where one characteristic's current, minimum, average and maximum values lie
// between its lower and upper limits: a bar in ColorMeter that spans 1.1 times the limit
// range, an upward triangle under the bar for each value, the limits at the two ends and
// the unit in between.
//
// The owner sets the values of one weld and calls Refresh() once; with AutoRefresh on,
// every property change lays the meter out again. What one layout computed is painted
// until the next one; bar, frame and labels are drawn once into a cached pixmap, so a new
// weld repaints only the four triangles over it. Repaints are scheduled (update()), so a
// burst of welds costs one paint.
//
// The meter's own switch is the Enabled property (meterEnabled()): off, it shows the bar
// alone, without triangles, limit labels and unit. It is independent of QWidget's
// enabled state, which the meter does not use.
class HorizontalMeter : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(double LimitUpper READ LimitUpper WRITE setLimitUpper)
    Q_PROPERTY(double LimitLower READ LimitLower WRITE setLimitLower)
    Q_PROPERTY(double ValueCurrent READ ValueCurrent WRITE setValueCurrent)
    Q_PROPERTY(double ValueMaximum READ ValueMaximum WRITE setValueMaximum)
    Q_PROPERTY(double ValueMinimum READ ValueMinimum WRITE setValueMinimum)
    Q_PROPERTY(double ValueAverage READ ValueAverage WRITE setValueAverage)
    Q_PROPERTY(QString NumberFormat READ NumberFormat WRITE setNumberFormat)
    Q_PROPERTY(QString Unit READ Unit WRITE setUnit)
    Q_PROPERTY(bool HideLimitUpper READ HideLimitUpper WRITE setHideLimitUpper)
    Q_PROPERTY(bool HideLimitLower READ HideLimitLower WRITE setHideLimitLower)
    Q_PROPERTY(QColor ColorMeter READ ColorMeter WRITE setColorMeter)
    Q_PROPERTY(QColor ColorCurrent READ ColorCurrent WRITE setColorCurrent)
    Q_PROPERTY(QColor ColorMinimum READ ColorMinimum WRITE setColorMinimum)
    Q_PROPERTY(QColor ColorAverage READ ColorAverage WRITE setColorAverage)
    Q_PROPERTY(QColor ColorMaximum READ ColorMaximum WRITE setColorMaximum)
    Q_PROPERTY(bool ShowBorder READ ShowBorder WRITE setShowBorder)
    Q_PROPERTY(bool AutoRefresh READ AutoRefresh WRITE setAutoRefresh)
    Q_PROPERTY(bool Enabled READ meterEnabled WRITE setMeterEnabled)

public:
    // Size of a marker box; the triangle fills columns 1 to 9 and rows 1 to 5 of it, its
    // apex in column 5.
    static constexpr int kMarkerWidth = 11;
    static constexpr int kMarkerHeight = 7;

    // What one layout put on the meter's face; paint draws this and nothing else.
    struct Face
    {
        // The parts drawn into the cached pixmap.
        struct Frame
        {
            bool border = false;
            bool lowerLabelShown = false;
            bool upperLabelShown = false;
            bool unitShown = false;
            QString lowerLabel;
            QString upperLabel;
            QString unit;
            QColor barColor;
            bool operator==(const Frame &) const = default;
        };
        Frame frame;
        bool markersShown = false;
        std::array<QColor, kMeterMarkerCount> markerColors;
        // Left edges of the marker boxes in the bar's coordinates.
        std::array<double, kMeterMarkerCount> markerLeft{};
        // Each value formatted with NumberFormat, a blank and Unit.
        std::array<QString, kMeterMarkerCount> valueTexts;
    };

    explicit HorizontalMeter(QWidget *parent = nullptr);
    ~HorizontalMeter() override;

    // Where paint and layout failures go; null restores the meter's own warning log.
    void setErrorReport(ErrorReport *report);
    // Translates the captions of the value tooltip; null shows their default texts.
    void setLanguage(const qlxLanguage *language);

    double LimitUpper() const { return m_limitUpper; }
    double LimitLower() const { return m_limitLower; }
    // Refuse a limit that would leave LimitLower above LimitUpper, keeping the old one.
    void setLimitUpper(double value);
    void setLimitLower(double value);
    // Moves both limits, assigning them in the order that never leaves the lower limit
    // above the upper one in between; refuses lower > upper and keeps both old limits.
    void setLimits(double lower, double upper);

    double ValueCurrent() const { return m_values[meterMarkerIndex(MeterMarker::Current)]; }
    double ValueMaximum() const { return m_values[meterMarkerIndex(MeterMarker::Maximum)]; }
    double ValueMinimum() const { return m_values[meterMarkerIndex(MeterMarker::Minimum)]; }
    double ValueAverage() const { return m_values[meterMarkerIndex(MeterMarker::Average)]; }
    void setValueCurrent(double value) { setValue(MeterMarker::Current, value); }
    void setValueMaximum(double value) { setValue(MeterMarker::Maximum, value); }
    void setValueMinimum(double value) { setValue(MeterMarker::Minimum, value); }
    void setValueAverage(double value) { setValue(MeterMarker::Average, value); }

    QString NumberFormat() const { return m_picture.picture(); }
    void setNumberFormat(const QString &picture);
    QString Unit() const { return m_unit; }
    void setUnit(const QString &unit);

    bool HideLimitUpper() const { return m_hideLimitUpper; }
    bool HideLimitLower() const { return m_hideLimitLower; }
    void setHideLimitUpper(bool hide);
    void setHideLimitLower(bool hide);

    QColor ColorMeter() const { return m_colorMeter; }
    QColor ColorCurrent() const { return m_markerColors[meterMarkerIndex(MeterMarker::Current)]; }
    QColor ColorMinimum() const { return m_markerColors[meterMarkerIndex(MeterMarker::Minimum)]; }
    QColor ColorAverage() const { return m_markerColors[meterMarkerIndex(MeterMarker::Average)]; }
    QColor ColorMaximum() const { return m_markerColors[meterMarkerIndex(MeterMarker::Maximum)]; }
    void setColorMeter(const QColor &color);
    void setColorCurrent(const QColor &color) { setMarkerColor(MeterMarker::Current, color); }
    void setColorMinimum(const QColor &color) { setMarkerColor(MeterMarker::Minimum, color); }
    void setColorAverage(const QColor &color) { setMarkerColor(MeterMarker::Average, color); }
    void setColorMaximum(const QColor &color) { setMarkerColor(MeterMarker::Maximum, color); }

    bool ShowBorder() const { return m_showBorder; }
    void setShowBorder(bool show);
    bool AutoRefresh() const { return m_autoRefresh; }
    void setAutoRefresh(bool autoRefresh);
    bool meterEnabled() const { return m_meterEnabled; }
    void setMeterEnabled(bool enabled);

    // Lays the meter out from the current properties and schedules a repaint.
    void Refresh();

    const Face &face() const { return m_face; }
    // The bar and a marker box as the last layout placed them, in widget coordinates.
    QRect barRect() const;
    QRect markerBox(MeterMarker marker) const;
    // How many times their normal size the markers and labels are drawn: a tall row, on a
    // maximised window across the cell, gets markers and figures that can be read from
    // there. 1 up to twice the usual height, at most 3.
    int markerScale() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    struct Geometry
    {
        QRect bar;
        int markerTop = 0;
        QRect labels;
    };

    void setValue(MeterMarker marker, double value);
    void setMarkerColor(MeterMarker marker, const QColor &color);
    void assignLimitUpper(double value, const char *procedure);
    void assignLimitLower(double value, const char *procedure);
    void propertyChanged();
    void runLayout();
    Face layoutFace();
    QString valueText(double value) const;
    void updateToolTip();
    Geometry geometry() const;
    QFont labelFont() const;
    void rebuildFrame(qreal devicePixelRatio);
    void drawMarker(QPainter &painter, const QRect &box, const QColor &color) const;

    WidgetErrorReport m_ownErrors;
    ErrorReport *m_errors = &m_ownErrors;
    const qlxLanguage *m_language = nullptr;

    double m_limitUpper = 10.0;
    double m_limitLower = 0.0;
    std::array<double, kMeterMarkerCount> m_values{5.0, 2.5, 5.0, 7.5};
    NumberPicture m_picture{QStringLiteral("0.0000")};
    QString m_unit;
    bool m_hideLimitUpper = false;
    bool m_hideLimitLower = false;
    QColor m_colorMeter;
    std::array<QColor, kMeterMarkerCount> m_markerColors;
    bool m_showBorder = false;
    bool m_autoRefresh = false;
    bool m_meterEnabled = false;

    MeterLayout m_layout;
    QSize m_layoutSize;
    Face m_face;
    QPixmap m_frameCache;
    bool m_frameStale = true;
};

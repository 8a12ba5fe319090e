#pragma once

#include "WidgetErrorReport.h"
#include "stats/HistogramBins.h"
#include "stats/NumberPicture.h"

#include <QColor>
#include <QVector>
#include <QWidget>

#include <optional>
#include <vector>

class ErrorReport;

// The distribution of one characteristic's values: 22 vertical bars over the
// specification range widened by 5% at each end, bars beyond a limit or a warning limit
// in that limit's colour, and the two specification limits marked and labelled. It keeps
// its own (shared) copy of the values and computes no statistics.
//
// With AutoRefresh on (the default), every property change recounts or recolours and
// redraws; a host that sets many properties at once switches it off and calls Refresh().
// QWidget's own enabled state serves as the control's Enabled property.
class Histogram : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(double LimitLower READ LimitLower WRITE setLimitLower)
    Q_PROPERTY(double LimitUpper READ LimitUpper WRITE setLimitUpper)
    Q_PROPERTY(double WarningLower READ WarningLower WRITE setWarningLower)
    Q_PROPERTY(double WarningUpper READ WarningUpper WRITE setWarningUpper)
    Q_PROPERTY(QColor BarColor READ BarColor WRITE setBarColor)
    Q_PROPERTY(QColor LimitLowerColor READ LimitLowerColor WRITE setLimitLowerColor)
    Q_PROPERTY(QColor LimitUpperColor READ LimitUpperColor WRITE setLimitUpperColor)
    Q_PROPERTY(QColor WarningLowerColor READ WarningLowerColor WRITE setWarningLowerColor)
    Q_PROPERTY(QColor WarningUpperColor READ WarningUpperColor WRITE setWarningUpperColor)
    Q_PROPERTY(QString NumberFormat READ NumberFormat WRITE setNumberFormat)
    Q_PROPERTY(bool AutoRefresh READ AutoRefresh WRITE setAutoRefresh)
    Q_PROPERTY(QVector<double> Dataset READ values WRITE setValues)

public:
    explicit Histogram(QWidget *parent = nullptr);
    ~Histogram() override;

    void setErrorReport(ErrorReport *report);

    double LimitLower() const { return m_limitLower; }
    double LimitUpper() const { return m_limitUpper; }
    // Refuse a limit that would leave LimitLower above LimitUpper, keeping the old one.
    void setLimitLower(double value);
    void setLimitUpper(double value);
    // Both limits in the order that never crosses them; refuses lower > upper.
    void setLimits(double lower, double upper);

    // Until they are set, the warning limits are the specification limits.
    double WarningLower() const { return m_warningLower.value_or(m_limitLower); }
    double WarningUpper() const { return m_warningUpper.value_or(m_limitUpper); }
    void setWarningLower(double value);
    void setWarningUpper(double value);

    QColor BarColor() const { return m_barColor; }
    QColor LimitLowerColor() const { return m_limitLowerColor; }
    QColor LimitUpperColor() const { return m_limitUpperColor; }
    QColor WarningLowerColor() const { return m_warningLowerColor; }
    QColor WarningUpperColor() const { return m_warningUpperColor; }
    void setBarColor(const QColor &color);
    void setLimitLowerColor(const QColor &color);
    void setLimitUpperColor(const QColor &color);
    void setWarningLowerColor(const QColor &color);
    void setWarningUpperColor(const QColor &color);

    QString NumberFormat() const { return m_picture.picture(); }
    void setNumberFormat(const QString &picture);

    bool AutoRefresh() const { return m_autoRefresh; }
    void setAutoRefresh(bool autoRefresh);

    const QVector<double> &values() const { return m_values; }
    // The values one by one, and the tally of values folded in a long run.
    void setValues(const QVector<double> &values, const QVector<ValueCount> &folded = {});

    // Shown over the plot while there are no values (already translated); none by default.
    void setEmptyText(const QString &text);

    // Counts the values into the bins, colours the bars and schedules a repaint.
    void Refresh();

    const std::vector<HistogramBin> &bins() const { return m_bins; }
    const std::vector<quint32> &barColors() const { return m_barColors; }
    // The area the bars stand in and where bar i stands in it; an empty rectangle for a
    // bar that is not drawn.
    QRect plotRect() const;
    HistogramBars bars() const;
    QRect barRect(int index) const;
    // The arrow over a first or last bar that also counts values beyond the drawing range,
    // pointing the way they lie; an empty rectangle for a bar without one.
    QRect farValuesMark(int index) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    enum class Change { Redraw, Recolour, Recount };
    void propertyChanged(Change change);
    void assignLimitLower(double value, const char *procedure);
    void assignLimitUpper(double value, const char *procedure);
    void LoadHistoBins();
    void ColorBars();
    HistogramColors colors() const;
    void drawBars(QPainter &painter, const QRect &plot, const HistogramBars &bars) const;
    void drawLimitMarkers(QPainter &painter, const QRect &plot, const HistogramBars &bars) const;

    WidgetErrorReport m_ownErrors;
    ErrorReport *m_errors = &m_ownErrors;

    double m_limitLower = 0;
    double m_limitUpper = 10;
    std::optional<double> m_warningLower;
    std::optional<double> m_warningUpper;
    QColor m_barColor;
    QColor m_limitLowerColor;
    QColor m_limitUpperColor;
    QColor m_warningLowerColor;
    QColor m_warningUpperColor;
    NumberPicture m_picture{QStringLiteral("0.0")};
    bool m_autoRefresh = true;
    QVector<double> m_values;
    QString m_emptyText;
    QVector<ValueCount> m_folded;

    std::vector<HistogramBin> m_bins;
    std::vector<quint32> m_barColors;
};

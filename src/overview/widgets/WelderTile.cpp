#include "WelderTile.h"

#include "overview/WelderFigures.h"

#include "monitor/EquipmentMonitor.h"
#include "monitor/widgets/MonitorCaptions.h"
#include "platform/qlxLanguage.h"
#include "stats/widgets/BgrColor.h"
#include "stats/widgets/ScaledFont.h"

#include <QGridLayout>
#include <QLabel>
#include <QLocale>
#include <QMouseEvent>

namespace {

constexpr int kColumns = 4;

QStringView linkStateToken(LinkState state)
{
    switch (state) {
    case LinkState::ShutDown:
        return u"7553|Shut down";
    case LinkState::Stopped:
        return u"7554|Stopped";
    case LinkState::ConnectRequested:
        return u"6051|Connecting...";
    case LinkState::Connected:
        return u"6052|Connected";
    }
    return u"7554|Stopped";
}

// The colour of a characteristic's cell, as its meter's bar would be.
quint32 cellColor(const WelderFigures::Characteristic &characteristic)
{
    if (characteristic.outOfSpecification > 0)
        return BgrColor::kRed;
    if (characteristic.warnings > 0)
        return BgrColor::kYellow;
    return characteristic.hasLimits ? BgrColor::kGreen : 0xC0C0C0;
}

void paintBackground(QWidget *widget, const QColor &color)
{
    QPalette palette = widget->palette();
    palette.setColor(QPalette::Window, color);
    palette.setColor(QPalette::WindowText, Qt::black);
    widget->setPalette(palette);
}

} // namespace

WelderTile::WelderTile(const WelderFigures &figures, const qlxLanguage &language, QWidget *parent)
    : QFrame(parent)
    , m_figures(figures)
    , m_language(language)
{
    setObjectName(QStringLiteral("tile:") + figures.monitor().identifier());
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setCursor(Qt::PointingHandCursor);

    auto *layout = new QGridLayout(this);
    layout->setContentsMargins(8, 6, 8, 6);
    layout->setSpacing(3);
    m_lblName = addLabel(QStringLiteral("lblName"), 1.6, true);
    m_lblLinkState = addLabel(QStringLiteral("lblLinkState"), 1.2, true);
    m_lblWelds = addLabel(QStringLiteral("lblWelds"), 1.2, false);
    m_lblLastWeld = addLabel(QStringLiteral("lblLastWeld"), 1.0, false);
    layout->addWidget(m_lblName, 0, 0, 1, kColumns);
    layout->addWidget(m_lblLinkState, 1, 0, 1, kColumns);
    layout->addWidget(m_lblWelds, 2, 0, 1, kColumns);
    layout->addWidget(m_lblLastWeld, 3, 0, 1, kColumns);
    for (int i = 0; i < 8; ++i) {
        QLabel *cell = addLabel(QStringLiteral("lblCharacteristic%1").arg(i + 1), 1.0, true);
        cell->setAutoFillBackground(true);
        cell->setAlignment(Qt::AlignCenter);
        layout->addWidget(cell, 4 + i / kColumns, i % kColumns);
        m_characteristics.push_back(cell);
    }
    m_lblSpc = addLabel(QStringLiteral("lblSpc"), 1.0, true);
    m_lblSpc->setWordWrap(true);
    m_lblSpc->setAutoFillBackground(true);
    layout->addWidget(m_lblSpc, 6, 0, 1, kColumns);
    refresh();
}

QLabel *WelderTile::addLabel(const QString &objectName, double fontScale, bool bold)
{
    auto *label = new QLabel(this);
    label->setObjectName(objectName);
    label->setFont(scaledFont(font(), fontScale, bold));
    return label;
}

QSize WelderTile::sizeHint() const
{
    const QSize natural = QFrame::sizeHint();
    return QSize(qMax(300, natural.width()), natural.height());
}

void WelderTile::refresh()
{
    const EquipmentMonitor &monitor = m_figures.monitor();
    m_lblName->setText(monitor.configurationName());
    const LinkState state = m_figures.linkState();
    m_lblLinkState->setText(m_language.Translate(linkStateToken(state)));
    const bool down = state != LinkState::Connected && state != LinkState::ConnectRequested;
    paintBackground(this, down ? QColor(0xE0, 0xA0, 0xA0) : palette().color(QPalette::Base));

    m_lblWelds->setText(QStringLiteral("%1 %2 · %3 %4")
                            .arg(m_figures.weldsInLastHour())
                            .arg(m_language.Translate(u"7551|welds in the last hour"))
                            .arg(QLocale().toString(m_figures.weldsPerMinute(), 'f', 1))
                            .arg(m_language.Translate(u"7552|per minute")));
    const QDateTime last = m_figures.lastWeldTime();
    m_lblLastWeld->setText(
        m_language.Translate(MonitorCaptions::kLastWeld) + QStringLiteral(": ") +
        (last.isValid() ? QLocale().toString(last, QLocale::ShortFormat) : QStringLiteral("----")));

    const auto &characteristics = m_figures.characteristics();
    for (size_t i = 0; i < m_characteristics.size(); ++i) {
        QLabel *cell = m_characteristics[i];
        if (i >= characteristics.size()) {
            cell->setText(QString());
            paintBackground(cell, QColor(0xC0, 0xC0, 0xC0));
            continue;
        }
        const WelderFigures::Characteristic &shown = characteristics[i];
        cell->setText(QStringLiteral("%1\n%2 / %3")
                          .arg(shown.name.left(12))
                          .arg(shown.outOfSpecification)
                          .arg(shown.warnings));
        cell->setToolTip(shown.name);
        paintBackground(cell, BgrColor::toColor(cellColor(shown)));
    }
    refreshSpc();
}

void WelderTile::refreshSpc()
{
    QStringList lines;
    if (const int backlog = m_figures.spcBacklog(); backlog > 0)
        lines << m_language.Translate(MonitorCaptions::kSpcBacklog) + QStringLiteral(": ") +
                     QString::number(backlog);
    const int violations = m_figures.ruleViolationsInLastHour();
    if (violations > 0)
        lines << QStringLiteral("%1 %2: %3")
                     .arg(violations)
                     .arg(m_language.Translate(u"7555|rule violations in the last hour"))
                     .arg(m_figures.lastRuleViolation());
    m_lblSpc->setText(lines.join(u'\n'));
    m_lblSpc->setVisible(!lines.isEmpty());
    // A process out of control is as urgent as a part out of specification.
    paintBackground(m_lblSpc, violations > 0 ? BgrColor::toColor(BgrColor::kRed)
                                             : BgrColor::toColor(BgrColor::kYellow));
}

void WelderTile::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        emit clicked();
    QFrame::mousePressEvent(event);
}

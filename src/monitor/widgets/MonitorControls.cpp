#include "MonitorControls.h"

#include "AlarmLinesView.h"
#include "MonitorCaptions.h"
#include "platform/qlxLanguage.h"
#include "stats/widgets/HorizontalMeter.h"
#include "stats/widgets/ScaledFont.h"

#include <QComboBox>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QSplitter>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

QString rowName(const char *control, int row)
{
    return QLatin1String(control) + u'_' + QString::number(row);
}

// Captions of the status block are quieter than the figures they name.
void muteCaption(QLabel *label)
{
    QPalette palette = label->palette();
    const QColor ink = palette.color(QPalette::WindowText);
    const QColor paper = palette.color(QPalette::Window);
    palette.setColor(QPalette::WindowText,
                     QColor::fromRgbF(0.6f * ink.redF() + 0.4f * paper.redF(),
                                      0.6f * ink.greenF() + 0.4f * paper.greenF(),
                                      0.6f * ink.blueF() + 0.4f * paper.blueF()));
    label->setPalette(palette);
}

// The summary button's picture: three bars of a small histogram, drawn for 1x and 2x
// screens so it stays sharp at any pixel ratio.
QIcon summaryIcon(const QColor &ink)
{
    QIcon icon;
    for (const qreal ratio : {1.0, 2.0}) {
        QPixmap pixmap(QSize(16, 16) * ratio);
        pixmap.setDevicePixelRatio(ratio);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(ink);
        painter.drawRect(QRectF(2, 9, 3, 5));
        painter.drawRect(QRectF(6.5, 3, 3, 11));
        painter.drawRect(QRectF(11, 7, 3, 7));
        painter.fillRect(QRectF(1, 14, 14, 1), ink);
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace

void MonitorControls::build(QWidget *owner)
{
    const QFont base = owner->font();
    const QFont strong = scaledFont(base, 1.0, true);
    const QFont valueFont = scaledFont(base, 1.6, true);
    const int em = QFontMetrics(base).height();

    // ---- Header: Start/Stop, connection, SPC part -------------------------------------
    bnStartStop = new QPushButton(owner);
    bnStartStop->setObjectName(QStringLiteral("bnStartStop"));
    bnStartStop->setFont(strong);
    bnStartStop->setMinimumWidth(7 * em);

    picConnectionProblem = new QLabel(owner);
    picConnectionProblem->setObjectName(QStringLiteral("picConnectionProblem"));
    QSizePolicy iconPolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    // The label beside it must not jump when the warning comes and goes.
    iconPolicy.setRetainSizeWhenHidden(true);
    picConnectionProblem->setSizePolicy(iconPolicy);
    picConnectionProblem->setFixedSize(em, em);
    picConnectionProblem->setVisible(false);

    lblConnection = new QLabel(owner);
    lblConnection->setObjectName(QStringLiteral("lblConnection"));
    lblConnection->setMinimumWidth(8 * em);

    lblPartCaption = new QLabel(owner);
    lblPartCaption->setObjectName(QStringLiteral("lblPartCaption"));
    txtPart = new QLineEdit(owner);
    txtPart->setObjectName(QStringLiteral("txtPart"));
    txtPart->setReadOnly(true);
    txtPart->setFocusPolicy(Qt::ClickFocus);
    txtPart->setMinimumWidth(9 * em);
    txtPart->setMaximumWidth(16 * em);
    bnPartSelect = new QPushButton(QStringLiteral("\u2026"), owner);
    bnPartSelect->setObjectName(QStringLiteral("bnPartSelect"));
    bnPartSelect->setFixedWidth(2 * em);
    lblPartCaption->setBuddy(bnPartSelect);

    auto *header = new QHBoxLayout;
    header->setSpacing(em / 2);
    header->addWidget(bnStartStop);
    header->addSpacing(em / 2);
    header->addWidget(picConnectionProblem);
    header->addWidget(lblConnection);
    header->addStretch(1);
    header->addWidget(lblPartCaption);
    header->addWidget(txtPart, 1);
    header->addWidget(bnPartSelect);

    // ---- Result rows ----------------------------------------------------------------
    auto *rowsFrame = new QFrame(owner);
    rowsFrame->setObjectName(QStringLiteral("rows"));
    rowsFrame->setFrameShape(QFrame::StyledPanel);
    rowsFrame->setBackgroundRole(QPalette::Base);
    rowsFrame->setAutoFillBackground(true);
    auto *rows = new QGridLayout(rowsFrame);
    rows->setContentsMargins(em / 2, em / 3, em / 2, em / 3);
    rows->setHorizontalSpacing(em * 2 / 3);
    rows->setVerticalSpacing(em / 4);
    const QIcon summary = summaryIcon(owner->palette().color(QPalette::ButtonText));
    const int valueWidth =
        QFontMetrics(valueFont).horizontalAdvance(QStringLiteral("-00000.0000")) + em;
    for (int row = 0; row < kRowCount; ++row) {
        auto *selector = new QComboBox(rowsFrame);
        selector->setObjectName(rowName("cboCharacteristic", row));
        selector->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        selector->setMinimumContentsLength(13);
        // Locked while collecting, the selector still names its row legibly; the greyed
        // arrow shows that it cannot be changed.
        QPalette selectorPalette = selector->palette();
        for (const auto role : {QPalette::ButtonText, QPalette::Text, QPalette::WindowText})
            selectorPalette.setColor(QPalette::Disabled, role,
                                     selectorPalette.color(QPalette::Active, role));
        selector->setPalette(selectorPalette);
        cboCharacteristic[row] = selector;

        auto *meter = new HorizontalMeter(rowsFrame);
        meter->setObjectName(rowName("hmMeter", row));
        // Rows share the height the tab gives them instead of insisting on the meter's
        // preferred height.
        meter->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
        // The meter paints its labels on its window colour; here that is the panel's.
        QPalette meterPalette = meter->palette();
        meterPalette.setColor(QPalette::Window, meterPalette.color(QPalette::Base));
        meter->setPalette(meterPalette);
        hmMeter[row] = meter;

        auto *lastValue = new QLineEdit(rowsFrame);
        lastValue->setObjectName(rowName("txtLastValue", row));
        lastValue->setReadOnly(true);
        lastValue->setFocusPolicy(Qt::ClickFocus);
        lastValue->setFont(valueFont);
        lastValue->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        lastValue->setFixedWidth(valueWidth);
        txtLastValue[row] = lastValue;

        auto *setup = new QToolButton(rowsFrame);
        setup->setObjectName(rowName("bnSetup", row));
        setup->setIcon(summary);
        setup->setIconSize(QSize(em, em));
        setup->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
        bnSetup[row] = setup;

        rows->addWidget(selector, row, 0, Qt::AlignVCenter);
        rows->addWidget(meter, row, 1);
        rows->addWidget(lastValue, row, 2, Qt::AlignVCenter);
        rows->addWidget(setup, row, 3, Qt::AlignVCenter);
        rows->setRowStretch(row, 1);
    }
    rows->setColumnStretch(1, 1);

    // ---- Status block ---------------------------------------------------------------
    auto *statusFrame = new QFrame(owner);
    statusFrame->setObjectName(QStringLiteral("status"));
    statusFrame->setFrameShape(QFrame::StyledPanel);
    auto *status = new QGridLayout(statusFrame);
    status->setContentsMargins(em * 2 / 3, em / 3, em * 2 / 3, em / 3);
    status->setHorizontalSpacing(em * 2 / 3);
    status->setVerticalSpacing(em / 4);
    const auto addStatus = [&](QLabel *&caption, QLabel *&value, const char *name, int line,
                               int column) {
        caption = new QLabel(statusFrame);
        caption->setObjectName(QLatin1String(name) + QStringLiteral("Caption"));
        muteCaption(caption);
        value = new QLabel(statusFrame);
        value->setObjectName(QLatin1String(name));
        value->setFont(strong);
        value->setTextInteractionFlags(Qt::TextSelectableByMouse);
        value->setMinimumWidth(6 * em);
        status->addWidget(caption, line, column);
        status->addWidget(value, line, column + 1);
    };
    addStatus(lblModeCaption, lblMode, "lblMode", 0, 0);
    addStatus(lblLastWeldCaption, lblLastWeld, "lblLastWeld", 1, 0);
    addStatus(lblAlarmsCaption, lblAlarms, "lblAlarms", 2, 0);
    addStatus(lblRunTimeCaption, lblRunTime, "lblRunTime", 0, 3);
    addStatus(lblWeldsCaption, lblWelds, "lblWelds", 1, 3);
    addStatus(lblWeldsPerHourCaption, lblWeldsPerHour, "lblWeldsPerHour", 2, 3);
    addStatus(lblSpcBacklogCaption, lblSpcBacklog, "lblSpcBacklog", 3, 0);
    lblSpcBacklogCaption->hide();
    lblSpcBacklog->hide();
    status->setRowStretch(4, 1);
    status->setColumnMinimumWidth(2, em / 2);
    status->setColumnStretch(1, 1);
    status->setColumnStretch(4, 1);

    // ---- Alarms list ----------------------------------------------------------------
    lblAlarmListCaption = new QLabel(owner);
    lblAlarmListCaption->setObjectName(QStringLiteral("lblAlarmListCaption"));
    muteCaption(lblAlarmListCaption);
    lstAlarms = new AlarmLinesView(owner);
    lstAlarms->setObjectName(QStringLiteral("lstAlarms"));
    // The list takes the height of the status block beside it and scrolls; the rows
    // above get the rest of the tab.
    lstAlarms->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
    lstAlarms->setMinimumHeight(5 * lstAlarms->lineHeight() + 2 * lstAlarms->frameWidth());
    lblAlarmListCaption->setBuddy(lstAlarms);

    auto *alarms = new QVBoxLayout;
    alarms->setSpacing(2);
    alarms->addWidget(lblAlarmListCaption);
    alarms->addWidget(lstAlarms, 1);

    // The status block lines up with the list, below the list's caption.
    auto *statusColumn = new QVBoxLayout;
    statusColumn->setSpacing(2);
    statusColumn->addSpacing(lblAlarmListCaption->sizeHint().height());
    statusColumn->addWidget(statusFrame, 1);

    auto *bottomBlock = new QWidget(owner);
    bottomBlock->setObjectName(QStringLiteral("statusAndAlarms"));
    auto *bottom = new QHBoxLayout(bottomBlock);
    bottom->setContentsMargins(0, 0, 0, 0);
    bottom->setSpacing(em * 2 / 3);
    bottom->addLayout(statusColumn, 3);
    bottom->addLayout(alarms, 2);

    auto *layout = new QVBoxLayout(owner);
    layout->setContentsMargins(em * 2 / 3, em * 2 / 3, em * 2 / 3, em * 2 / 3);
    layout->setSpacing(em / 2);
    layout->addLayout(header);
    splAlarms = new QSplitter(Qt::Vertical, owner);
    splAlarms->setObjectName(QStringLiteral("splAlarms"));
    splAlarms->setChildrenCollapsible(false);
    splAlarms->addWidget(rowsFrame);
    splAlarms->addWidget(bottomBlock);
    splAlarms->setStretchFactor(0, 1);
    splAlarms->setStretchFactor(1, 0);
    layout->addWidget(splAlarms, 1);

    // Keyboard order: the commands first, then each row's selector and summary, then the
    // alarms; boxes that only show figures take the focus by mouse alone.
    QWidget *previous = bnStartStop;
    const auto chain = [&previous](QWidget *next) {
        QWidget::setTabOrder(previous, next);
        previous = next;
    };
    chain(bnPartSelect);
    for (int row = 0; row < kRowCount; ++row) {
        chain(cboCharacteristic[row]);
        chain(bnSetup[row]);
    }
    chain(lstAlarms);
}

void MonitorControls::translateCaptions(const qlxLanguage &language)
{
    const auto caption = [&](QStringView token) { return language.Translate(token); };
    lblPartCaption->setText(caption(MonitorCaptions::kPart));
    bnPartSelect->setToolTip(caption(MonitorCaptions::kSelectPart));
    picConnectionProblem->setToolTip(caption(MonitorCaptions::kConnectionProblem));
    for (int row = 0; row < kRowCount; ++row) {
        cboCharacteristic[row]->setPlaceholderText(caption(MonitorCaptions::kNoCharacteristic));
        bnSetup[row]->setToolTip(caption(MonitorCaptions::kSummary));
        bnSetup[row]->setAccessibleName(caption(MonitorCaptions::kSummary));
        hmMeter[row]->setLanguage(&language);
    }
    lblModeCaption->setText(caption(MonitorCaptions::kMode));
    lblLastWeldCaption->setText(caption(MonitorCaptions::kLastWeld));
    lblAlarmsCaption->setText(caption(MonitorCaptions::kAlarms));
    lblRunTimeCaption->setText(caption(MonitorCaptions::kRunTime));
    lblWeldsCaption->setText(caption(MonitorCaptions::kWelds));
    lblWeldsPerHourCaption->setText(caption(MonitorCaptions::kWeldsPerHour));
    lblSpcBacklogCaption->setText(caption(MonitorCaptions::kSpcBacklog));
    lblAlarmListCaption->setText(caption(MonitorCaptions::kAlarms));
}

void MonitorControls::updateConnectionIcon(qreal devicePixelRatio)
{
    const QIcon warning = picConnectionProblem->style()->standardIcon(QStyle::SP_MessageBoxWarning);
    picConnectionProblem->setPixmap(warning.pixmap(picConnectionProblem->size(), devicePixelRatio));
}

void MonitorControls::showValueAlert(int row, ValueAlert alert)
{
    // Palettes are swapped only when the verdict changes, not on every weld.
    if (m_valueAlerts[row] == alert)
        return;
    m_valueAlerts[row] = alert;
    QLineEdit *box = txtLastValue[row];
    QPalette palette = box->parentWidget()->palette();
    switch (alert) {
    case ValueAlert::None:
        break;
    case ValueAlert::Warning:
        palette.setColor(QPalette::Base, QColor(0xff, 0xf0, 0x9e));
        palette.setColor(QPalette::Text, QColor(0x1a, 0x1a, 0x1a));
        break;
    case ValueAlert::OutOfSpecification:
        palette.setColor(QPalette::Base, QColor(0xff, 0xd4, 0xd4));
        palette.setColor(QPalette::Text, QColor(0xa8, 0x00, 0x00));
        break;
    }
    box->setPalette(palette);
}

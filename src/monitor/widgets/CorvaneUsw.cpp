#include "CorvaneUsw.h"

#include "AlarmLinesView.h"
#include "AlarmListModel.h"
#include "DisplayRules.h"
#include "MonitorCaptions.h"

#include "monitor/EquipmentMonitor.h"
#include "monitor/SamplingSeam.h"
#include "platform/ErrorPassing.h"
#include "stats/widgets/BgrColor.h"
#include "stats/widgets/HorizontalMeter.h"
#include "stats/widgets/dlgSummary.h"

#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSplitter>
#include <QStyle>
#include <QToolButton>

#include <algorithm>

CorvaneUsw::CorvaneUsw(EquipmentMonitor &monitor, ErrorReport &errors, QWidget *parent)
    : QWidget(parent)
    , m_monitor(monitor)
    , m_errors(errors)
{
    setObjectName(QStringLiteral("CorvaneUsw"));
    m_controls.build(this);

    m_alarmModel = new AlarmListModel(m_monitor.alarms(), this);
    m_controls.lstAlarms->setModel(m_alarmModel);

    for (int row = 0; row < kRowCount; ++row) {
        m_controls.hmMeter[row]->setErrorReport(&m_errors);
        connect(m_controls.cboCharacteristic[row], &QComboBox::currentIndexChanged, this,
                [this, row] { cboCharacteristic_Click(row); });
        connect(m_controls.bnSetup[row], &QToolButton::clicked, this,
                [this, row] { bnSetup_Click(row); });
    }
    connect(m_controls.bnPartSelect, &QPushButton::clicked, this, &CorvaneUsw::bnPartSelect_Click);
    connect(m_controls.bnStartStop, &QPushButton::clicked, this, &CorvaneUsw::bnStartStop_Click);
    connect(m_controls.splAlarms, &QSplitter::splitterMoved, this, [this] {
        m_shownAlarmListHeight = m_controls.splAlarms->sizes().constLast();
        m_monitor.setAlarmListHeight(m_shownAlarmListHeight);
    });

    connect(&m_monitor, &EquipmentMonitor::displayRefreshRequested, this,
            &CorvaneUsw::scheduleRefresh);
    connect(&m_monitor, &EquipmentMonitor::spcBacklogChanged, this, &CorvaneUsw::scheduleRefresh);
    connect(&m_monitor, &EquipmentMonitor::alarmsChanged, this, [this] {
        // A cleared list must be seen before the next lines arrive; the rows follow with
        // the next refresh.
        m_alarmModel->alarmsChanged();
        scheduleRefresh();
    });
    connect(&m_monitor, &EquipmentMonitor::startStopCaptionChanged, this,
            &CorvaneUsw::showStartStopCaption);
    connect(&m_monitor, &EquipmentMonitor::connectionLabelChanged, m_controls.lblConnection,
            &QLabel::setText);
    connect(&m_monitor, &EquipmentMonitor::connectionProblemChanged, this,
            &CorvaneUsw::showConnectionProblem);
    connect(&m_monitor, &EquipmentMonitor::displayItemsEnabledChanged, this,
            &CorvaneUsw::EnableDisplayItems);

    // The monitor may have been initialized and loaded before its face was made.
    translateCaptions();
    LoadTests();
    showStartStopCaption(m_monitor.startStopCaption());
    m_controls.lblConnection->setText(m_monitor.connectionLabel());
    showConnectionProblem(m_monitor.connectionProblem());
    EnableDisplayItems(m_monitor.displayItemsEnabled());
    RefreshDisplay();
}

CorvaneUsw::~CorvaneUsw() = default;

void CorvaneUsw::Initialize(const qlxLanguage &language, int slotIndex)
{
    m_monitor.Initialize(language, slotIndex);
    reportFailures(m_errors, "CorvaneUsw.Initialize", [&] {
        translateCaptions();
        LoadTests();
        RefreshDisplay();
    });
}

void CorvaneUsw::translateCaptions()
{
    m_controls.translateCaptions(m_monitor.language());
}

void CorvaneUsw::LoadTests()
{
    const auto entries = m_monitor.LoadTests();
    for (int row = 0; row < kRowCount; ++row) {
        QComboBox *selector = m_controls.cboCharacteristic[row];
        const QSignalBlocker quiet(selector);
        selector->clear();
        // "(none)" first, so that a row chosen by mistake can be emptied again.
        selector->addItem(m_monitor.language().Translate(MonitorCaptions::kNoCharacteristic), 0);
        for (const auto &[name, number] : entries)
            selector->addItem(name, number);
        syncSelector(row);
    }
}

void CorvaneUsw::syncSelector(int row)
{
    QComboBox *selector = m_controls.cboCharacteristic[row];
    const int number = m_monitor.rowSelection(row);
    const int index = selector->findData(number >= 1 ? number : 0);
    if (selector->currentIndex() != index) {
        const QSignalBlocker quiet(selector);
        selector->setCurrentIndex(index);
    }
    m_controls.bnSetup[row]->setEnabled(number >= 1 && index >= 0);
}

// ---- Refresh --------------------------------------------------------------------------

void CorvaneUsw::scheduleRefresh()
{
    if (m_refreshPending)
        return;
    m_refreshPending = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (m_refreshPending)
                RefreshDisplay();
        },
        Qt::QueuedConnection);
}

void CorvaneUsw::RefreshDisplay()
{
    m_refreshPending = false;
    // Each row stands on its own: a row that cannot be shown is reported and the others,
    // the status block and the alarms still follow the monitor.
    for (int row = 0; row < kRowCount; ++row)
        reportFailures(m_errors, "CorvaneUsw.RefreshDisplay", [&] { refreshRow(row); });
    reportFailures(m_errors, "CorvaneUsw.RefreshDisplay", [&] {
        refreshStatus();
        m_controls.txtPart->setText(m_monitor.sampling().Part());
        m_alarmModel->sync();
        showAlarmListHeight();
    });
    emit displayRefreshed();
}

void CorvaneUsw::showAlarmListHeight()
{
    // A height from the configuration, once per change: the splitter then keeps it
    // while the window is resized.
    const int height = m_monitor.configuration().alarmListHeight;
    if (height <= 0 || height == m_shownAlarmListHeight)
        return;
    m_shownAlarmListHeight = height;
    const QList<int> sizes = m_controls.splAlarms->sizes();
    const int total = std::max(sizes.constFirst() + sizes.constLast(), 2 * height);
    m_controls.splAlarms->setSizes({total - height, height});
}

void CorvaneUsw::refreshRow(int row)
{
    passOn("CorvaneUsw.RefreshDisplay", [&] {
        syncSelector(row);
        const int number = m_monitor.rowSelection(row);
        if (m_monitor.totalWelds() >= 1 && number >= 1)
            showRow(row, m_monitor.datasets().Item(DatasetCollection::keyFor(number)));
        else
            clearRow(row);
    });
}

void CorvaneUsw::showRow(int row, const Dataset &dataset)
{
    HorizontalMeter &meter = *m_controls.hmMeter[row];
    const DisplayRules::MeterScale scale = DisplayRules::meterScale(dataset);
    const std::optional<quint32> bar = DisplayRules::barColor(dataset);
    const auto markerColor = [&dataset](double value) {
        return BgrColor::toColor(DisplayRules::SetMarkerColor(dataset, value));
    };
    const QString format = dataset.NumberFormat();

    meter.setColorMeter(bar ? BgrColor::toColor(*bar) : buttonFace());
    meter.setNumberFormat(format);
    meter.setUnit(dataset.Unit);
    meter.setLimits(scale.lower, scale.upper);
    meter.setHideLimitUpper(false);
    meter.setHideLimitLower(false);
    meter.setValueMinimum(dataset.Minimum());
    meter.setValueAverage(dataset.Average());
    meter.setValueCurrent(dataset.LastValue());
    meter.setValueMaximum(dataset.Maximum());
    meter.setColorMinimum(markerColor(dataset.Minimum()));
    meter.setColorAverage(markerColor(dataset.Average()));
    meter.setColorMaximum(markerColor(dataset.Maximum()));
    meter.setMeterEnabled(true);
    meter.Refresh();

    if (m_pictures[row].picture() != format)
        m_pictures[row] = NumberPicture(format);
    m_controls.txtLastValue[row]->setText(m_pictures[row].format(meter.ValueCurrent(), locale()));
    using Alert = MonitorControls::ValueAlert;
    m_controls.showValueAlert(row, bar == BgrColor::kRed      ? Alert::OutOfSpecification
                                   : bar == BgrColor::kYellow ? Alert::Warning
                                                              : Alert::None);
}

void CorvaneUsw::clearRow(int row)
{
    HorizontalMeter &meter = *m_controls.hmMeter[row];
    if (meter.meterEnabled()) {
        meter.setMeterEnabled(false);
        // An idle row shows no verdict: its bar loses the colour of its last value.
        meter.setColorMeter(buttonFace());
        meter.Refresh();
    }
    m_controls.txtLastValue[row]->setText(DisplayRules::kNoValue.toString());
    m_controls.showValueAlert(row, MonitorControls::ValueAlert::None);
}

void CorvaneUsw::refreshStatus()
{
    const DisplayRules::StatusTexts texts = DisplayRules::statusTexts(m_monitor);
    m_controls.lblMode->setText(texts.mode);
    m_controls.lblLastWeld->setText(texts.lastWeld);
    m_controls.lblAlarms->setText(texts.alarms);
    m_controls.lblRunTime->setText(texts.runTime);
    m_controls.lblWelds->setText(texts.welds);
    if (texts.weldsPerHour)
        m_controls.lblWeldsPerHour->setText(*texts.weldsPerHour);
    const int backlog = m_monitor.spcBacklog();
    m_controls.lblSpcBacklogCaption->setVisible(backlog > 0);
    m_controls.lblSpcBacklog->setVisible(backlog > 0);
    m_controls.lblSpcBacklog->setText(QString::number(backlog));
}

QColor CorvaneUsw::buttonFace() const
{
    return palette().color(QPalette::Button);
}

// ---- Commands -------------------------------------------------------------------------

void CorvaneUsw::cboCharacteristic_Click(int row)
{
    reportFailures(m_errors, "CorvaneUsw.cboCharacteristic_Click", [&] {
        const QVariant number = m_controls.cboCharacteristic[row]->currentData();
        m_monitor.setRowSelection(row, number.isValid() ? number.toInt() : 0);
    });
}

void CorvaneUsw::bnSetup_Click(int row)
{
    reportFailures(m_errors, "CorvaneUsw.bnSetup_Click", [&] {
        const int number = m_monitor.rowSelection(row);
        if (number < 1)
            return;
        const Dataset &dataset = m_monitor.datasets().Item(DatasetCollection::keyFor(number));
        // The summary is a snapshot of the values so far; welds keep arriving while it is
        // open, so it is not run in a loop of its own.
        dlgSummary *summary =
            dlgSummary::fromDataset(dataset, m_monitor.language(), m_errors, this).release();
        summary->setAttribute(Qt::WA_DeleteOnClose);
        // The chart reads the SPC database that the monitor samples into: without
        // sampling there is none.
        if (m_openControlChart && !m_monitor.sampling().DataSourceName().isEmpty())
            summary->setControlChartOpener([this, summary, test = dataset.Name] {
                summary->accept();
                m_openControlChart(test, this);
            });
        summary->open();
    });
}

void CorvaneUsw::bnPartSelect_Click()
{
    reportFailures(m_errors, "CorvaneUsw.bnPartSelect_Click", [&] {
        if (m_monitor.sampling().SelectPart(this))
            m_controls.txtPart->setText(m_monitor.sampling().Part());
    });
}

void CorvaneUsw::bnStartStop_Click()
{
    // The monitor reports its own failures under the button's name.
    m_monitor.StartStop();
}

void CorvaneUsw::EnableDisplayItems(bool enabled)
{
    // The rows are locked exactly while the monitor collects: the button then stops it.
    m_controls.bnStartStop->setIcon(
        style()->standardIcon(enabled ? QStyle::SP_MediaPlay : QStyle::SP_MediaStop));
    m_controls.bnPartSelect->setEnabled(enabled);
    for (QComboBox *selector : m_controls.cboCharacteristic)
        selector->setEnabled(enabled);
}

// ---- Link state -----------------------------------------------------------------------

void CorvaneUsw::showStartStopCaption(const QString &caption)
{
    m_controls.bnStartStop->setText(caption);
}

void CorvaneUsw::showConnectionProblem(bool problem)
{
    m_controls.picConnectionProblem->setVisible(problem);
}

// ---- Looks ----------------------------------------------------------------------------

QSize CorvaneUsw::sizeHint() const
{
    const int em = fontMetrics().height();
    return QSize(60 * em, 38 * em);
}

void CorvaneUsw::showEvent(QShowEvent *event)
{
    m_controls.updateConnectionIcon(devicePixelRatioF());
    QWidget::showEvent(event);
}

void CorvaneUsw::changeEvent(QEvent *event)
{
    const bool looksChanged =
        event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange;
    if (looksChanged && m_alarmModel) {
        // Bars of rows without limits take the new button-face colour.
        scheduleRefresh();
        m_controls.updateConnectionIcon(devicePixelRatioF());
    }
    QWidget::changeEvent(event);
}

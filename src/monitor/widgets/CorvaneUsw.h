#pragma once

#include "MonitorControls.h"

#include "stats/NumberPicture.h"

#include <QWidget>

#include <array>
#include <functional>

class AlarmListModel;
class Dataset;
class EquipmentMonitor;
class ErrorReport;
class qlxLanguage;

// The face of one welder's monitor, shown in its tab: eight result rows of characteristic,
// meter and last value, the status block, the alarms list, the SPC part and the
// Start/Stop button with the link's state. It is a view over an EquipmentMonitor, which
// does all the work and outlives it; the view shows what the monitor holds and forwards
// the engineer's commands to it.
//
// Repaints are coalesced: every request of the monitor to refresh (one per weld) only
// marks the face out of date, and RefreshDisplay runs once on the next pass of the event
// loop. A burst of ten thousand welds in one arrival is therefore drawn once, and a
// refresh reads only the running figures of the datasets, never their value lists.
class CorvaneUsw : public QWidget
{
    Q_OBJECT

public:
    static constexpr int kRowCount = MonitorControls::kRowCount;

    // Reports the failures of the view's own event procedures to errors.
    CorvaneUsw(EquipmentMonitor &monitor, ErrorReport &errors, QWidget *parent = nullptr);
    ~CorvaneUsw() override;

    // Initializes the monitor with the language and fills and translates the face.
    void Initialize(const qlxLanguage &language, int slotIndex);
    // Fills the eight row selectors with the monitor's characteristics, keeping each row's
    // selection.
    void LoadTests();
    // Redraws the whole face from the monitor now.
    void RefreshDisplay();
    // True while a refresh the monitor asked for has not run yet.
    bool refreshPending() const { return m_refreshPending; }
    // Locks (false) or frees the part button and the row selectors.
    void EnableDisplayItems(bool enabled);

    // The engineer's commands.
    void cboCharacteristic_Click(int row);
    void bnSetup_Click(int row);

    // Opens the control chart of a characteristic (its test name) from the SPC database
    // the monitor samples into; without one the summary offers no chart.
    using ControlChartOpener = std::function<void(const QString &test, QWidget *parent)>;
    void setControlChartOpener(ControlChartOpener open) { m_openControlChart = std::move(open); }
    void bnPartSelect_Click();
    void bnStartStop_Click();

    EquipmentMonitor &monitor() const { return m_monitor; }
    const MonitorControls &controls() const { return m_controls; }

    QSize sizeHint() const override;

signals:
    // The face shows the monitor's state again (after every RefreshDisplay).
    void displayRefreshed();

protected:
    void changeEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void scheduleRefresh();
    void refreshRow(int row);
    void showRow(int row, const Dataset &dataset);
    void clearRow(int row);
    void refreshStatus();
    void syncSelector(int row);
    void showAlarmListHeight();
    void translateCaptions();
    void showStartStopCaption(const QString &caption);
    void showConnectionProblem(bool problem);
    QColor buttonFace() const;

    EquipmentMonitor &m_monitor;
    ErrorReport &m_errors;
    ControlChartOpener m_openControlChart;
    MonitorControls m_controls;
    AlarmListModel *m_alarmModel = nullptr;
    // The number picture of each row, rebuilt only when a characteristic's format changes.
    std::array<NumberPicture, kRowCount> m_pictures;
    bool m_refreshPending = false;
    int m_shownAlarmListHeight = 0;
};

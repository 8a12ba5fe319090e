#pragma once

#include <QIcon>

#include <array>

class AlarmLinesView;
class HorizontalMeter;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QToolButton;
class QWidget;
class QSplitter;
class qlxLanguage;

// The controls of one monitor's face and their layout: a header with the Start/Stop
// button, the connection state and the SPC part; eight result rows of selector, meter,
// last value and summary button; and below them the status block beside the alarms list.
// Every control carries its documented name as its object name, which scripts and tests
// find it by; the controls of the rows are numbered from 0 (cboCharacteristic_0 ..
// cboCharacteristic_7).
//
// Sizes follow the font, so the face scales with the user's font and the screen's pixel
// ratio, and it stays usable from about 800 x 520 up.
struct MonitorControls
{
    static constexpr int kRowCount = 8;

    // Creates the controls as children of owner and lays them out in owner.
    void build(QWidget *owner);
    void translateCaptions(const qlxLanguage &language);
    // The warning shown while the link has a problem, drawn for the owner's pixel ratio.
    void updateConnectionIcon(qreal devicePixelRatio);

    // How a last-value box stands out, so that a verdict reads from across the shop floor
    // as well as the bar beside it: not at all, on pale yellow (a warning limit passed),
    // or dark red on pale red (out of specification).
    enum class ValueAlert { None, Warning, OutOfSpecification };
    void showValueAlert(int row, ValueAlert alert);
    ValueAlert valueAlert(int row) const { return m_valueAlerts[row]; }

    QPushButton *bnStartStop = nullptr;
    QLabel *picConnectionProblem = nullptr;
    QLabel *lblConnection = nullptr;
    QLabel *lblPartCaption = nullptr;
    QLineEdit *txtPart = nullptr;
    QPushButton *bnPartSelect = nullptr;

    std::array<QComboBox *, kRowCount> cboCharacteristic{};
    std::array<HorizontalMeter *, kRowCount> hmMeter{};
    std::array<QLineEdit *, kRowCount> txtLastValue{};
    std::array<QToolButton *, kRowCount> bnSetup{};

    QLabel *lblModeCaption = nullptr;
    QLabel *lblLastWeldCaption = nullptr;
    QLabel *lblAlarmsCaption = nullptr;
    QLabel *lblRunTimeCaption = nullptr;
    QLabel *lblWeldsCaption = nullptr;
    QLabel *lblWeldsPerHourCaption = nullptr;
    QLabel *lblSpcBacklogCaption = nullptr;
    QLabel *lblMode = nullptr;
    QLabel *lblLastWeld = nullptr;
    QLabel *lblAlarms = nullptr;
    QLabel *lblRunTime = nullptr;
    QLabel *lblWelds = nullptr;
    QLabel *lblWeldsPerHour = nullptr;
    // Shown only while subgroups wait in the outbox for the SPC database.
    QLabel *lblSpcBacklog = nullptr;

    QLabel *lblAlarmListCaption = nullptr;
    AlarmLinesView *lstAlarms = nullptr;
    // Between the result rows and the status block with the alarms list, so that the
    // engineer can give the alarms more room.
    QSplitter *splAlarms = nullptr;

private:
    std::array<ValueAlert, kRowCount> m_valueAlerts{};
};

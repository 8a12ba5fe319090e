#pragma once

#include "SamplingDialogServices.h"

#include <QDialog>

#include <array>
#include <memory>

class NumericKeyFilter;
class QButtonGroup;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QToolButton;
class SamplingProperties;
namespace qlaDatabase6 {
class Database;
}
class qlxLanguage;

// The SPC sampling settings of one monitor: whether sampling is on, which
// characteristics are collected, the part and process the subgroups are stored for, the
// database, how often a subgroup is saved and how many values it keeps, and which alarm
// groups are logged. The settings are copied back only by OK, the data source too: a
// source chosen here gets a connection of the dialog's own for the part and process
// lists, so that a monitor that is collecting keeps storing into its source until OK.
class dlgSampling : public QDialog
{
    Q_OBJECT

public:
    static constexpr int kAlarmGroupCount = 7;

    // The language object, the sampling settings and the services must outlive the
    // dialog.
    dlgSampling(const qlxLanguage &language, SamplingProperties &sampling,
                const SamplingDialogServices &services, QWidget *parent = nullptr);
    ~dlgSampling() override;

    // True when OK closed the dialog and the settings were copied back.
    bool isAccepted() const { return m_accepted; }

    // The sampling period in seconds, shown as a number of seconds, minutes or hours.
    // Reading throws an overflow error when the number and unit come to more than a
    // 32-bit number of seconds.
    qint32 ctlSamplingPeriod() const;
    void setCtlSamplingPeriod(qint32 seconds);

    void Form_Load();
    void LoadUnitList();
    void OKButton_Click();
    void CancelButton_Click();
    void chkEnableAlarmLogging_Click();
    void bnPart_Click();
    void bnProcess_Click();
    void bnDSN_Click();
    void moDatabase_Connected();

protected:
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void buildControls();
    void layOutControls();
    void translateCaptions();
    void showSettings();
    void showDataSource();
    void enableAlarmGroups();
    // The database the part and process lists come from: the chosen source's, else the
    // monitor's.
    qlaDatabase6::Database &choiceDatabase();
    QString shownDataSourceName() const;
    QString translate(QStringView token) const;

    const qlxLanguage &m_language;
    SamplingProperties &m_sampling;
    SamplingDialogServices m_services;
    NumericKeyFilter *m_numericKeys = nullptr;
    bool m_loaded = false;
    bool m_accepted = false;
    std::unique_ptr<qlaDatabase6::Database> m_chosenDatabase;

    QCheckBox *m_chkEnableSampling = nullptr;
    QLabel *m_lblDSN = nullptr;
    QPushButton *m_bnDSN = nullptr;
    QLabel *m_lblPart = nullptr;
    QLineEdit *m_txtPart = nullptr;
    QToolButton *m_bnPart = nullptr;
    QCheckBox *m_chkPartReselect = nullptr;
    QLabel *m_lblProcess = nullptr;
    QLineEdit *m_txtProcess = nullptr;
    QToolButton *m_bnProcess = nullptr;
    QLabel *m_lblInterval = nullptr;
    QLineEdit *m_txtInterval = nullptr;
    QComboBox *m_cboUnit = nullptr;
    QLabel *m_lblSubgroupSize = nullptr;
    QLineEdit *m_txtSubgroupSize = nullptr;
    QLabel *m_lblCharacteristics = nullptr;
    QButtonGroup *m_optCharacteristics = nullptr;
    std::array<QRadioButton *, 2> m_optCharacteristicsButtons{};
    QCheckBox *m_chkEnableAlarmLogging = nullptr;
    std::array<QCheckBox *, kAlarmGroupCount> m_chkAlarmLogging{};
    QPushButton *m_OKButton = nullptr;
    QPushButton *m_CancelButton = nullptr;
    QGroupBox *m_fraDatabase = nullptr;
    QGroupBox *m_fraPartProcess = nullptr;
    QGroupBox *m_fraSubgroups = nullptr;
    QGroupBox *m_fraAlarms = nullptr;
};

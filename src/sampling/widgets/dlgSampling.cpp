#include "dlgSampling.h"

#include "NumericEntry.h"
#include "SamplingCaptions.h"
#include "dlgDataSource.h"
#include "dlgRecordSelection.h"

#include "platform/ErrorPassing.h"
#include "platform/MessageBoxes.h"
#include "platform/qlxLanguage.h"
#include "platform/spc/Database.h"
#include "sampling/SamplingProperties.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>
#include <QVBoxLayout>

using namespace SamplingCaptions;

namespace {

// The collection types of the two options, which are also the options' indexes.
constexpr int kCollectSelected = 0;
constexpr int kCollectAll = SamplingProperties::kCollectEveryCharacteristic;

template <typename Widget> Widget *named(Widget *widget, const char *name)
{
    widget->setObjectName(QLatin1String(name));
    return widget;
}

} // namespace

dlgSampling::dlgSampling(const qlxLanguage &language, SamplingProperties &sampling,
                         const SamplingDialogServices &services, QWidget *parent)
    : QDialog(parent)
    , m_language(language)
    , m_sampling(sampling)
    , m_services(services)
{
    setObjectName(QStringLiteral("dlgSampling"));
    setModal(true);
    buildControls();
    layOutControls();

    // clicked, not toggled: showing the settings sets the box without running the
    // user's command.
    connect(m_chkEnableAlarmLogging, &QCheckBox::clicked, this,
            &dlgSampling::chkEnableAlarmLogging_Click);
    connect(m_bnPart, &QToolButton::clicked, this, &dlgSampling::bnPart_Click);
    connect(m_bnProcess, &QToolButton::clicked, this, &dlgSampling::bnProcess_Click);
    connect(m_bnDSN, &QPushButton::clicked, this, &dlgSampling::bnDSN_Click);
    connect(m_OKButton, &QPushButton::clicked, this, &dlgSampling::OKButton_Click);
    connect(m_CancelButton, &QPushButton::clicked, this, &dlgSampling::CancelButton_Click);
    connect(&m_sampling.database(), &qlaDatabase6::Database::connected, this,
            &dlgSampling::moDatabase_Connected);
}

void dlgSampling::buildControls()
{
    m_numericKeys = new NumericKeyFilter(this);

    m_chkEnableSampling = named(new QCheckBox(this), "chkEnableSampling");

    m_fraDatabase = named(new QGroupBox(this), "fraDatabase");
    m_lblDSN = named(new QLabel(m_fraDatabase), "lblDSN");
    m_lblDSN->setFrameShape(QFrame::StyledPanel);
    m_lblDSN->setFrameShadow(QFrame::Sunken);
    // A long path must neither widen the window nor lose its file name: the label takes
    // the room it is given and shows the name shortened in the middle, whole in its tip.
    m_lblDSN->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_lblDSN->setMinimumWidth(QFontMetrics(font()).horizontalAdvance(QString(36, u'x')));
    m_bnDSN = named(new QPushButton(m_fraDatabase), "bnDSN");
    m_bnDSN->setAutoDefault(false);

    m_fraPartProcess = named(new QGroupBox(this), "fraPartProcess");
    m_lblPart = named(new QLabel(m_fraPartProcess), "lblPart");
    m_txtPart = named(new QLineEdit(m_fraPartProcess), "txtPart");
    m_bnPart = named(new QToolButton(m_fraPartProcess), "bnPart");
    m_chkPartReselect = named(new QCheckBox(m_fraPartProcess), "chkPartReselect");
    m_lblProcess = named(new QLabel(m_fraPartProcess), "lblProcess");
    m_txtProcess = named(new QLineEdit(m_fraPartProcess), "txtProcess");
    m_bnProcess = named(new QToolButton(m_fraPartProcess), "bnProcess");
    const QFontMetrics metrics(font());
    m_txtPart->setMinimumWidth(metrics.horizontalAdvance(QString(28, u'x')));
    m_lblPart->setBuddy(m_txtPart);
    m_lblProcess->setBuddy(m_txtProcess);

    m_fraSubgroups = named(new QGroupBox(this), "fraSubgroups");
    m_lblInterval = named(new QLabel(m_fraSubgroups), "lblInterval");
    m_txtInterval = named(new QLineEdit(m_fraSubgroups), "txtInterval");
    m_cboUnit = named(new QComboBox(m_fraSubgroups), "cboUnit");
    // The units are filled in once the dialog loads, in the user's language.
    m_cboUnit->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_lblSubgroupSize = named(new QLabel(m_fraSubgroups), "lblSubgroupSize");
    m_txtSubgroupSize = named(new QLineEdit(m_fraSubgroups), "txtSubgroupSize");
    for (QLineEdit *field : {m_txtInterval, m_txtSubgroupSize}) {
        field->installEventFilter(m_numericKeys);
        field->setAlignment(Qt::AlignRight);
        field->setMaximumWidth(metrics.horizontalAdvance(QString(9, u'0')));
    }
    m_lblInterval->setBuddy(m_txtInterval);
    m_lblSubgroupSize->setBuddy(m_txtSubgroupSize);
    m_lblCharacteristics = named(new QLabel(m_fraSubgroups), "lblCharacteristics");
    m_optCharacteristics = new QButtonGroup(this);
    m_optCharacteristics->setObjectName(QStringLiteral("optCharacteristics"));
    m_optCharacteristicsButtons[kCollectSelected] =
        named(new QRadioButton(m_fraSubgroups), "optCharacteristics_0");
    m_optCharacteristicsButtons[kCollectAll] =
        named(new QRadioButton(m_fraSubgroups), "optCharacteristics_1");
    for (int index = 0; index < int(m_optCharacteristicsButtons.size()); ++index)
        m_optCharacteristics->addButton(m_optCharacteristicsButtons[index], index);

    m_fraAlarms = named(new QGroupBox(this), "fraAlarms");
    m_chkEnableAlarmLogging = named(new QCheckBox(m_fraAlarms), "chkEnableAlarmLogging");
    for (int index = 0; index < kAlarmGroupCount; ++index) {
        m_chkAlarmLogging[index] = new QCheckBox(m_fraAlarms);
        m_chkAlarmLogging[index]->setObjectName(QStringLiteral("chkAlarmLogging_%1").arg(index));
    }

    m_OKButton = named(new QPushButton(this), "OKButton");
    m_OKButton->setDefault(true);
    m_CancelButton = named(new QPushButton(this), "CancelButton");
    m_CancelButton->setAutoDefault(false);
}

void dlgSampling::layOutControls()
{
    auto *database = new QHBoxLayout(m_fraDatabase);
    database->addWidget(m_lblDSN, 1);
    database->addWidget(m_bnDSN, 0, Qt::AlignTop);

    auto *partProcess = new QGridLayout(m_fraPartProcess);
    partProcess->addWidget(m_lblPart, 0, 0);
    partProcess->addWidget(m_txtPart, 0, 1);
    partProcess->addWidget(m_bnPart, 0, 2);
    partProcess->addWidget(m_chkPartReselect, 1, 1, 1, 2);
    partProcess->addWidget(m_lblProcess, 2, 0);
    partProcess->addWidget(m_txtProcess, 2, 1);
    partProcess->addWidget(m_bnProcess, 2, 2);
    partProcess->setColumnStretch(1, 1);

    auto *subgroups = new QGridLayout(m_fraSubgroups);
    subgroups->addWidget(m_lblInterval, 0, 0);
    subgroups->addWidget(m_txtInterval, 0, 1);
    subgroups->addWidget(m_cboUnit, 0, 2, Qt::AlignLeft);
    subgroups->addWidget(m_lblSubgroupSize, 1, 0);
    subgroups->addWidget(m_txtSubgroupSize, 1, 1);
    subgroups->addWidget(m_lblCharacteristics, 2, 0);
    auto *characteristics = new QHBoxLayout;
    for (QRadioButton *option : m_optCharacteristicsButtons)
        characteristics->addWidget(option);
    characteristics->addStretch(1);
    subgroups->addLayout(characteristics, 2, 1, 1, 3);
    subgroups->setColumnStretch(3, 1);

    // The groups in two columns under their switch, indented as its dependants.
    auto *alarms = new QGridLayout(m_fraAlarms);
    alarms->addWidget(m_chkEnableAlarmLogging, 0, 0, 1, 3);
    alarms->setColumnMinimumWidth(0, QFontMetrics(font()).height());
    const int firstColumnRows = (kAlarmGroupCount + 1) / 2;
    for (int index = 0; index < kAlarmGroupCount; ++index) {
        const bool second = index >= firstColumnRows;
        alarms->addWidget(m_chkAlarmLogging[index], 1 + index % firstColumnRows, second ? 2 : 1);
    }
    alarms->setColumnStretch(1, 1);
    alarms->setColumnStretch(2, 1);

    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(m_OKButton, QDialogButtonBox::AcceptRole);
    buttons->addButton(m_CancelButton, QDialogButtonBox::RejectRole);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_chkEnableSampling);
    layout->addWidget(m_fraDatabase);
    layout->addWidget(m_fraPartProcess);
    layout->addWidget(m_fraSubgroups);
    layout->addWidget(m_fraAlarms);
    layout->addStretch(1);
    layout->addWidget(buttons);
}

void dlgSampling::showEvent(QShowEvent *event)
{
    if (!m_loaded)
        Form_Load();
    QDialog::showEvent(event);
}

void dlgSampling::Form_Load()
{
    m_loaded = true;
    reportFailures(m_services.errors, "dlgSampling.Form_Load", [this] {
        translateCaptions();
        LoadUnitList();
        showSettings();
    });
}

void dlgSampling::translateCaptions()
{
    setWindowTitle(translate(kSPCSampling));
    m_chkEnableSampling->setText(translate(kEnableSampling));
    m_fraDatabase->setTitle(translate(kDatabaseFrame));
    m_bnDSN->setText(translate(kDataSourceButton));
    m_fraPartProcess->setTitle(translate(kPartProcessFrame));
    m_lblPart->setText(translate(kPart));
    m_chkPartReselect->setText(translate(kPartReselect));
    m_lblProcess->setText(translate(kProcess));
    m_bnPart->setText(translate(kChoose));
    m_bnPart->setToolTip(translate(kSelectPart));
    m_bnProcess->setText(translate(kChoose));
    m_bnProcess->setToolTip(translate(kSelectProcess));
    m_fraSubgroups->setTitle(translate(kSamplingFrame));
    m_lblInterval->setText(translate(kInterval));
    m_lblSubgroupSize->setText(translate(kSubgroupSize));
    m_lblCharacteristics->setText(translate(kCharacteristics));
    m_optCharacteristicsButtons[kCollectSelected]->setText(translate(kSelectedCharacteristics));
    m_optCharacteristicsButtons[kCollectAll]->setText(translate(kAllCharacteristics));
    m_fraAlarms->setTitle(translate(kAlarmsFrame));
    m_chkEnableAlarmLogging->setText(translate(kEnableAlarmLogging));
    for (int index = 0; index < kAlarmGroupCount; ++index)
        m_chkAlarmLogging[index]->setText(translate(kAlarmGroupLabels[index]));
    m_OKButton->setText(translate(kOK));
    m_CancelButton->setText(translate(kCancel));
}

void dlgSampling::LoadUnitList()
{
    passOn("dlgSampling.LoadUnitList", [this] {
        m_cboUnit->clear();
        for (const PeriodUnit &unit : kPeriodUnits)
            m_cboUnit->addItem(translate(unit.token), unit.seconds);
    });
}

void dlgSampling::showSettings()
{
    m_chkEnableSampling->setChecked(m_sampling.Enabled());
    // Any type but "all" samples the characteristics chosen for sampling.
    const int collection =
        m_sampling.CollectionType() == kCollectAll ? kCollectAll : kCollectSelected;
    m_optCharacteristicsButtons[collection]->setChecked(true);
    m_txtPart->setText(m_sampling.Part());
    m_chkPartReselect->setChecked(m_sampling.AllowPartReselect());
    m_txtProcess->setText(m_sampling.Process());
    setCtlSamplingPeriod(m_sampling.SamplingPeriod());
    m_txtSubgroupSize->setText(QString::number(m_sampling.SubgroupSize()));
    m_chkEnableAlarmLogging->setChecked(m_sampling.EnableAlarmLogging());
    for (int index = 0; index < kAlarmGroupCount; ++index)
        m_chkAlarmLogging[index]->setChecked((m_sampling.LogAlarms() & (1 << index)) != 0);
    enableAlarmGroups();
    showDataSource();
}

void dlgSampling::showDataSource()
{
    const QString dsn = shownDataSourceName();
    m_lblDSN->setToolTip(dsn);
    const int room = m_lblDSN->contentsRect().width() - 2 * m_lblDSN->margin() -
                     m_lblDSN->fontMetrics().horizontalAdvance(u'x');
    m_lblDSN->setText(m_lblDSN->fontMetrics().elidedText(dsn, Qt::ElideMiddle, room));
}

void dlgSampling::resizeEvent(QResizeEvent *event)
{
    QDialog::resizeEvent(event);
    if (m_loaded)
        showDataSource();
}

qint32 dlgSampling::ctlSamplingPeriod() const
{
    const int unit = m_cboUnit->currentIndex() >= 0 ? m_cboUnit->currentData().toInt() : 1;
    return NumericEntry::roundToInt32(NumericEntry::numericValue(m_txtInterval->text()) * unit,
                                      "dlgSampling.ctlSamplingPeriod");
}

void dlgSampling::setCtlSamplingPeriod(qint32 seconds)
{
    if (m_cboUnit->count() == 0)
        LoadUnitList();
    // The largest unit that divides the period evenly; a period of 0 shows in hours.
    int unit = 0;
    for (int index = int(kPeriodUnits.size()) - 1; index >= 0; --index) {
        if (seconds % kPeriodUnits[index].seconds == 0) {
            unit = index;
            break;
        }
    }
    m_cboUnit->setCurrentIndex(unit);
    m_txtInterval->setText(QString::number(seconds / kPeriodUnits[unit].seconds));
}

void dlgSampling::chkEnableAlarmLogging_Click()
{
    reportFailures(m_services.errors, "dlgSampling.chkEnableAlarmLogging_Click",
                   [this] { enableAlarmGroups(); });
}

void dlgSampling::enableAlarmGroups()
{
    const bool enabled = m_chkEnableAlarmLogging->isChecked();
    for (QCheckBox *group : m_chkAlarmLogging)
        group->setEnabled(enabled);
}

void dlgSampling::bnPart_Click()
{
    reportFailures(m_services.errors, "dlgSampling.bnPart_Click", [this] {
        qlaDatabase6::Database &database = choiceDatabase();
        if (!SamplingDialogs::connectForChoice(database, m_language, m_services.messages))
            return;
        dlgRecordSelection picker(qlaDatabase6::RecordKind::Part, database, m_language, m_services,
                                  this);
        picker.setPreselectedName(m_txtPart->text().trimmed());
        if (picker.exec() == QDialog::Accepted)
            m_txtPart->setText(picker.chosenName());
    });
}

void dlgSampling::bnProcess_Click()
{
    reportFailures(m_services.errors, "dlgSampling.bnProcess_Click", [this] {
        qlaDatabase6::Database &database = choiceDatabase();
        if (!SamplingDialogs::connectForChoice(database, m_language, m_services.messages))
            return;
        dlgRecordSelection picker(qlaDatabase6::RecordKind::Process, database, m_language,
                                  m_services, this);
        picker.setPreselectedName(m_txtProcess->text().trimmed());
        if (picker.exec() == QDialog::Accepted)
            m_txtProcess->setText(picker.chosenName());
    });
}

void dlgSampling::bnDSN_Click()
{
    reportFailures(m_services.errors, "dlgSampling.bnDSN_Click", [this] {
        dlgDataSource chooser(m_language, m_services, this);
        chooser.setDataSourceName(shownDataSourceName());
        if (chooser.exec() != QDialog::Accepted)
            return;
        m_chosenDatabase = m_sampling.makeDatabase(chooser.dataSourceName());
        // Shown at once, so that a source that cannot be reached is still seen as the
        // one chosen.
        showDataSource();
        SamplingDialogs::connectForChoice(*m_chosenDatabase, m_language, m_services.messages);
    });
}

dlgSampling::~dlgSampling() = default;

qlaDatabase6::Database &dlgSampling::choiceDatabase()
{
    return m_chosenDatabase ? *m_chosenDatabase : m_sampling.database();
}

QString dlgSampling::shownDataSourceName() const
{
    return m_chosenDatabase ? m_chosenDatabase->dataSourceName() : m_sampling.DataSourceName();
}

void dlgSampling::moDatabase_Connected()
{
    reportFailures(m_services.errors, "dlgSampling.moDatabase_Connected",
                   [this] { showDataSource(); });
}

void dlgSampling::OKButton_Click()
{
    reportFailures(m_services.errors, "dlgSampling.OKButton_Click", [this] {
        // Every number is read before anything is copied, so that one that does not fit
        // leaves the settings as they were.
        const qint32 period = ctlSamplingPeriod();
        // A period of 0 would close a subgroup at every timer tick.
        if (period <= 0) {
            m_services.messages.critical(translate(kSPCSampling), translate(kPeriodNotPositive));
            m_txtInterval->setFocus();
            return;
        }
        const qint32 subgroupSize = NumericEntry::roundToInt32(
            NumericEntry::numericValue(m_txtSubgroupSize->text()), "dlgSampling.OKButton_Click");
        qint32 logAlarms = 0;
        for (int index = 0; index < kAlarmGroupCount; ++index) {
            if (m_chkAlarmLogging[index]->isChecked())
                logAlarms |= 1 << index;
        }

        if (m_chosenDatabase)
            m_sampling.setDataSourceName(m_chosenDatabase->dataSourceName());
        m_sampling.setEnabled(m_chkEnableSampling->isChecked());
        m_sampling.setCollectionType(m_optCharacteristicsButtons[kCollectSelected]->isChecked()
                                         ? kCollectSelected
                                         : kCollectAll);
        m_sampling.setPart(m_txtPart->text());
        m_sampling.setAllowPartReselect(m_chkPartReselect->isChecked());
        m_sampling.setProcess(m_txtProcess->text());
        m_sampling.setSamplingPeriod(period);
        m_sampling.setSubgroupSize(subgroupSize);
        m_sampling.setEnableAlarmLogging(m_chkEnableAlarmLogging->isChecked());
        m_sampling.setLogAlarms(logAlarms);
        m_accepted = true;
        accept();
    });
}

void dlgSampling::CancelButton_Click()
{
    reportFailures(m_services.errors, "dlgSampling.CancelButton_Click", [this] { reject(); });
}

QString dlgSampling::translate(QStringView token) const
{
    return m_language.Translate(token);
}

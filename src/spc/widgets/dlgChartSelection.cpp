#include "dlgChartSelection.h"

#include "ChartCaptions.h"

#include "platform/qlxLanguage.h"
#include "platform/spc/Database.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPushButton>
#include <QVBoxLayout>

dlgChartSelection::dlgChartSelection(qlaDatabase6::Database &database, const qlxLanguage &language,
                                     QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("dlgChartSelection"));
    setWindowTitle(language.Translate(ChartCaptions::kControlChart));
    m_cboPart = addChoice(QStringLiteral("cboPart"));
    m_cboProcess = addChoice(QStringLiteral("cboProcess"));
    m_cboTest = addChoice(QStringLiteral("cboTest"));
    const std::pair<QComboBox *, qlaDatabase6::RecordKind> lists[] = {
        {m_cboPart, qlaDatabase6::RecordKind::Part},
        {m_cboProcess, qlaDatabase6::RecordKind::Process},
        {m_cboTest, qlaDatabase6::RecordKind::Test}};
    for (const auto &[box, kind] : lists)
        for (const qlaDatabase6::Record &record : database.listRecords(kind))
            box->addItem(record.name());

    auto *form = new QFormLayout;
    form->addRow(language.Translate(ChartCaptions::kPart), m_cboPart);
    form->addRow(language.Translate(ChartCaptions::kProcess), m_cboProcess);
    form->addRow(language.Translate(ChartCaptions::kTest), m_cboTest);

    auto *buttons = new QDialogButtonBox(this);
    m_bnOpen =
        buttons->addButton(language.Translate(ChartCaptions::kOpen), QDialogButtonBox::AcceptRole);
    m_bnOpen->setObjectName(QStringLiteral("bnOpen"));
    m_bnOpen->setEnabled(m_cboPart->count() > 0 && m_cboProcess->count() > 0 &&
                         m_cboTest->count() > 0);
    QPushButton *cancel = buttons->addButton(language.Translate(ChartCaptions::kCancel),
                                             QDialogButtonBox::RejectRole);
    cancel->setObjectName(QStringLiteral("bnCancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
}

QComboBox *dlgChartSelection::addChoice(const QString &objectName)
{
    auto *box = new QComboBox(this);
    box->setObjectName(objectName);
    box->setMinimumContentsLength(24);
    return box;
}

spc::Characteristic dlgChartSelection::characteristic() const
{
    return {m_cboPart->currentText(), m_cboProcess->currentText(), m_cboTest->currentText()};
}

std::optional<spc::Characteristic> dlgChartSelection::choose(qlaDatabase6::Database &database,
                                                             const qlxLanguage &language,
                                                             QWidget *parent)
{
    dlgChartSelection dialog(database, language, parent);
    if (dialog.exec() != QDialog::Accepted || !dialog.m_bnOpen->isEnabled())
        return std::nullopt;
    return dialog.characteristic();
}

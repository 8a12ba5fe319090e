#pragma once

#include "SamplingDialogServices.h"

#include "platform/spc/Records.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QModelIndex;
class QPushButton;
class QSortFilterProxyModel;
class QStandardItemModel;
class QTreeView;
class qlxLanguage;

namespace qlaDatabase6 {
class Database;
}

// The part (or process) picker of the SPC database: every part with its group, narrowed
// down to those whose name contains what the user types, with the current part chosen
// when it opens. A name that is typed exactly (in any case) is chosen by itself. A name
// that the database does not have yet can be added, after the user confirms, since a
// plant without other SPC tools has nowhere else to add its parts; OK with such a name
// asks the same question.
class dlgRecordSelection : public QDialog
{
    Q_OBJECT

public:
    // kind is Part or Process. The database must be connected; it, the language and the
    // services must outlive the dialog.
    dlgRecordSelection(qlaDatabase6::RecordKind kind, qlaDatabase6::Database &database,
                       const qlxLanguage &language, const SamplingDialogServices &services,
                       QWidget *parent = nullptr);

    qlaDatabase6::RecordKind kind() const { return m_kind; }
    // The name chosen when the dialog opens.
    void setPreselectedName(const QString &name);
    // The name the user confirmed with OK.
    const QString &chosenName() const { return m_chosenName; }

    void Form_Load();
    void LoadRecords();
    void txtName_Change();
    void lstRecords_Click();
    void lstRecords_DblClick();
    void bnNew_Click();
    void OKButton_Click();
    void CancelButton_Click();

    // Rows shown now, and in all.
    int shownCount() const;
    int recordCount() const;

protected:
    void showEvent(QShowEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QString translate(QStringView token) const;
    // The row of a name typed exactly (any case), or an invalid index.
    QModelIndex findExact(const QString &name) const;
    void choose(const QModelIndex &sourceIndex);
    QString selectedName() const;
    // Adds the typed name to the database after the user confirms; true when added.
    bool createTypedRecord();
    void updateState();
    void finish(const QString &name);

    qlaDatabase6::RecordKind m_kind;
    qlaDatabase6::Database &m_database;
    const qlxLanguage &m_language;
    SamplingDialogServices m_services;
    QString m_preselectedName;
    QString m_chosenName;
    bool m_loaded = false;

    QStandardItemModel *m_records = nullptr;
    QSortFilterProxyModel *m_shown = nullptr;
    QLabel *m_lblName = nullptr;
    QLineEdit *m_txtName = nullptr;
    QTreeView *m_lstRecords = nullptr;
    QLabel *m_lblCount = nullptr;
    QPushButton *m_bnNew = nullptr;
    QPushButton *m_OKButton = nullptr;
    QPushButton *m_CancelButton = nullptr;
};

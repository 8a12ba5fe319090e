#pragma once

#include "spc/StoredSubgroups.h"

#include <QDialog>

#include <optional>

class QComboBox;
class QLabel;
class QPushButton;
class qlxLanguage;

namespace qlaDatabase6 {
class Database;
}

// Asks which characteristic's control chart to open: a part, a process and a test of
// the SPC database, each chosen from the database's own list.
class dlgChartSelection : public QDialog
{
    Q_OBJECT

public:
    dlgChartSelection(qlaDatabase6::Database &database, const qlxLanguage &language,
                      QWidget *parent = nullptr);

    spc::Characteristic characteristic() const;

    // Asks modally; nothing when cancelled or the database has no part, process or test.
    static std::optional<spc::Characteristic> choose(qlaDatabase6::Database &database,
                                                     const qlxLanguage &language, QWidget *parent);

private:
    QComboBox *addChoice(const QString &objectName);

    QComboBox *m_cboPart = nullptr;
    QComboBox *m_cboProcess = nullptr;
    QComboBox *m_cboTest = nullptr;
    QPushButton *m_bnOpen = nullptr;
};

#pragma once

#include "SetupServices.h"

#include <QDialog>
#include <QLocale>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class qlxLanguage;

// The data logging setup of one configuration: whether each weld is appended to a text
// file, and which file. A chosen file is tried at once (opened for appending, created
// when missing) and its present size shown, so that a file that cannot be written is
// noticed before welding starts rather than in the event log afterwards.
class dlgDataLogging : public QDialog
{
    Q_OBJECT

public:
    // The language object and the services must outlive the dialog.
    dlgDataLogging(const qlxLanguage &language, const SetupServices &services,
                   QWidget *parent = nullptr);

    // The stored values the dialog starts from and compares with on OK.
    void setDataLogging(bool enabled, const QString &fileName);
    bool dataLoggingEnabled() const { return m_enabled; }
    const QString &dataLogFile() const { return m_fileName; }
    // True when OK closed the dialog.
    bool isAccepted() const { return m_accepted; }
    // True when OK wrote back a flag or path that differs from the stored one.
    bool changed() const { return m_changed; }

    void Form_Load();
    void DisplayTextFile(const QString &path);
    bool TestDataFile(const QString &path);
    void bnSelect_Click();
    void chkEnabled_Click();
    void OKButton_Click();
    void CancelButton_Click();

protected:
    void showEvent(QShowEvent *event) override;

private:
    QString translate(QStringView token) const;
    void showFileSize(qint64 bytes);

    const qlxLanguage &m_language;
    SetupServices m_services;
    QLocale m_locale;
    bool m_enabled = false;
    QString m_fileName;
    bool m_loaded = false;
    bool m_accepted = false;
    bool m_changed = false;

    QCheckBox *m_chkEnabled = nullptr;
    QLineEdit *m_txtFile = nullptr;
    QPushButton *m_bnSelect = nullptr;
    QLabel *m_lblStatus = nullptr;
    QPushButton *m_OKButton = nullptr;
    QPushButton *m_CancelButton = nullptr;
};

#pragma once

#include "SamplingDialogServices.h"

#include <QDialog>

class NumericKeyFilter;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QToolButton;
class qlxLanguage;

// Where a monitor's SPC database lives: a SQLite file on the workstation, or a database
// on the plant's PostgreSQL server (server, port, database, user). The dialog writes the
// one line of text the configuration keeps (the data source name) and can try the
// connection before the user commits to it. It never asks for a password, so none can
// end up in the configurations file: the server's password comes from PGPASSWORD or
// the user's password file, as its hint says.
class dlgDataSource : public QDialog
{
    Q_OBJECT

public:
    // The language object and the services must outlive the dialog.
    dlgDataSource(const qlxLanguage &language, const SamplingDialogServices &services,
                  QWidget *parent = nullptr);

    // Shows a data source name in the fields; one that cannot be read is shown as it
    // stands with the reason.
    void setDataSourceName(const QString &dsn);
    // The name given by setDataSourceName, or the one OK confirmed.
    const QString &dataSourceName() const { return m_dataSourceName; }

    // The data source name the fields describe; empty, with the reason in problem, when
    // they describe none.
    QString buildDataSourceName(QString *problem) const;

    // The name of a SQLite file: the path itself, or "sqlite:" and the path when the
    // path alone would be read as something else.
    static QString sqliteDataSourceName(const QString &path);

    void optKind_Click();
    void bnBrowse_Click();
    void bnTestConnection_Click();
    void OKButton_Click();
    void CancelButton_Click();

private:
    QString serverDataSourceName(QString *problem) const;
    void fieldsChanged();
    void enableFields();
    QString testFile(const QString &path) const;
    QString testConnection(const QString &dsn) const;
    QString translate(QStringView token) const;

    const qlxLanguage &m_language;
    SamplingDialogServices m_services;
    QString m_dataSourceName;
    NumericKeyFilter *m_numericKeys = nullptr;

    QRadioButton *m_optSQLite = nullptr;
    QLineEdit *m_txtFile = nullptr;
    QToolButton *m_bnBrowse = nullptr;
    QRadioButton *m_optPostgreSQL = nullptr;
    QLineEdit *m_txtHost = nullptr;
    QLineEdit *m_txtPort = nullptr;
    QLineEdit *m_txtDatabase = nullptr;
    QLineEdit *m_txtUser = nullptr;
    QLabel *m_lblPasswordHint = nullptr;
    QLineEdit *m_txtDSN = nullptr;
    QPushButton *m_bnTestConnection = nullptr;
    QLabel *m_lblTestResult = nullptr;
    QPushButton *m_OKButton = nullptr;
    QPushButton *m_CancelButton = nullptr;
    QList<QLabel *> m_serverLabels;
    QLabel *m_lblFile = nullptr;
};

#pragma once

#include <QDialog>

class QLabel;
class QPushButton;
class SettingsStore;
class qlxLanguage;

// The About box: the build number from the settings store, the product name and the
// copyright from the program's own version information, and the database maker's line.
// Made anew for each request and shown modally; bnClose or the close box ends it.
class dlgSplash : public QDialog
{
    Q_OBJECT

public:
    explicit dlgSplash(const SettingsStore &settings, QWidget *parent = nullptr);

    // The caller's language object, set before the box is loaded.
    void setLanguage(const qlxLanguage &language) { m_language = &language; }
    // Fills the lines and translates the captions.
    void Form_Load();

    QLabel *lblVersion = nullptr;
    QLabel *lblProductName = nullptr;
    QLabel *lblCopyright = nullptr;
    QLabel *lblPoweredBy = nullptr;
    QLabel *lblLicense = nullptr;
    QPushButton *bnClose = nullptr;

private:
    const SettingsStore &m_settings;
    const qlxLanguage *m_language = nullptr;
    QLabel *m_icon = nullptr;
};

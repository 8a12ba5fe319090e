#pragma once

#include <QString>

// The per-machine key/value store from which the program reads its title, its build
// number and where its configurations file lives. A read names a section and a key and
// returns the stored text, or the default when the key is absent. (QSettings: on Windows
// the registry, HKCU first and then HKLM under Software\Corvane\Monitor; an INI file
// under /etc/xdg on other systems; a test or demonstration can point it at a file of its
// own.)
class SettingsStore
{
public:
    virtual ~SettingsStore() = default;
    virtual QString read(const QString &section, const QString &key,
                         const QString &defaultValue) const = 0;
};

class QtSettingsStore : public SettingsStore
{
public:
    // The system-wide store of organisation "Corvane".
    QtSettingsStore();
    // The store in an INI file.
    explicit QtSettingsStore(QString iniPath);

    QString read(const QString &section, const QString &key,
                 const QString &defaultValue) const override;

private:
    QString m_iniPath;
};

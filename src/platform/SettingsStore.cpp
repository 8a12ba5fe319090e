#include "SettingsStore.h"

#include <QSettings>

QtSettingsStore::QtSettingsStore() = default;

QtSettingsStore::QtSettingsStore(QString iniPath)
    : m_iniPath(std::move(iniPath))
{
}

QString QtSettingsStore::read(const QString &section, const QString &key,
                              const QString &defaultValue) const
{
    const QString name = section + u'/' + key;
    if (!m_iniPath.isEmpty())
        return QSettings(m_iniPath, QSettings::IniFormat).value(name, defaultValue).toString();
    return QSettings(QSettings::SystemScope, QStringLiteral("Corvane"), QStringLiteral("Monitor"))
        .value(name, defaultValue)
        .toString();
}

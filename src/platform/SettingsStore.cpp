#include "SettingsStore.h"

#include <QSettings>

namespace {

// The store holds texts only, but an INI value with a comma in it ("Corvane Ostrel,
// Plant 2") comes back as a list of its parts; they are joined again.
QString storedText(const QVariant &value)
{
    if (value.typeId() == QMetaType::QStringList)
        return value.toStringList().join(QStringLiteral(", "));
    return value.toString();
}

} // namespace

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
        return storedText(QSettings(m_iniPath, QSettings::IniFormat).value(name, defaultValue));
    return storedText(
        QSettings(QSettings::SystemScope, QStringLiteral("Corvane"), QStringLiteral("Monitor"))
            .value(name, defaultValue));
}

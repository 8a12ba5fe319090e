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

// On Windows the user scope reads HKEY_CURRENT_USER\Software\Corvane\Monitor and falls
// back to the machine's HKEY_LOCAL_MACHINE\Software\Corvane\Monitor, so an administrator
// sets a plant's values once per machine and a user may still override one.
#ifdef Q_OS_WIN
constexpr QSettings::Scope kScope = QSettings::UserScope;
#else
constexpr QSettings::Scope kScope = QSettings::SystemScope;
#endif

} // namespace

QtSettingsStore::QtSettingsStore() = default;

QtSettingsStore::QtSettingsStore(QString iniPath)
    : m_iniPath(std::move(iniPath))
{}

QString QtSettingsStore::read(const QString &section, const QString &key,
                              const QString &defaultValue) const
{
    const QString name = section + u'/' + key;
    if (!m_iniPath.isEmpty())
        return storedText(QSettings(m_iniPath, QSettings::IniFormat).value(name, defaultValue));
    return storedText(QSettings(kScope, QStringLiteral("Corvane"), QStringLiteral("Monitor"))
                          .value(name, defaultValue));
}

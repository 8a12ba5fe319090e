#include "ConfigurationFile.h"

#include "DroppedContent.h"

#include "platform/Clock.h"
#include "platform/ErrorPassing.h"
#include "platform/FileErrors.h"

#include "platform/WholeFile.h"

#include <QFile>
#include <QStringDecoder>

ConfigurationFile::ConfigurationFile(QString path, const Clock &clock)
    : m_path(std::move(path))
    , m_clock(clock)
{}

QString ConfigurationFile::ReadConfigurationFile() const
{
    return passOn("dlgMain.ReadConfigurationFile", [&] {
        QFile file(m_path);
        if (!file.exists()) {
            // Reading leaves an empty file behind, as the first start of the program did.
            if (!file.open(QIODevice::WriteOnly))
                throw fileError(file, QStringLiteral("dlgMain.ReadConfigurationFile"));
            file.close();
        }
        if (!file.open(QIODevice::ReadOnly))
            throw fileError(file, QStringLiteral("dlgMain.ReadConfigurationFile"));
        const QByteArray bytes = file.readAll();
        if (file.error() != QFileDevice::NoError)
            throw fileError(file, QStringLiteral("dlgMain.ReadConfigurationFile"));
        return decode(bytes);
    });
}

bool ConfigurationFile::IsDirty(const QString &text) const
{
    return passOn("dlgMain.IsDirty",
                  [&] { return ReadConfigurationFile().compare(text, Qt::CaseInsensitive) != 0; });
}

bool ConfigurationFile::WriteConfigurationFile(const QString &text)
{
    return passOn("dlgMain.WriteConfigurationFile", [&] {
        if (!IsDirty(text))
            return true;
        keepUnreadOriginal(text);
        const QByteArray bytes = text.toUtf8();
        const QString source = QStringLiteral("dlgMain.WriteConfigurationFile");
        replaceWholeFile(m_path, bytes, source);
        replaceWholeFile(datedCopyPath(m_clock.now()), bytes, source);
        return true;
    });
}

void ConfigurationFile::keepUnreadOriginal(const QString &text)
{
    if (m_unreadChecked)
        return;
    QFile original(m_path);
    if (!original.open(QIODevice::ReadOnly))
        throw fileError(original, QStringLiteral("dlgMain.WriteConfigurationFile"));
    const QByteArray bytes = original.readAll();
    const QStringList dropped = droppedContent(decode(bytes), text);
    if (!dropped.isEmpty()) {
        const QString copy = unreadCopyPath(m_clock.now());
        replaceWholeFile(copy, withoutAddressPasswords(decode(bytes)).toUtf8(),
                         QStringLiteral("dlgMain.WriteConfigurationFile"));
        if (m_unreadKept)
            m_unreadKept(copy, dropped);
    }
    // Once kept, the original is safe; what this run writes later is its own.
    m_unreadChecked = true;
}

QString ConfigurationFile::unreadCopyPath(const QDateTime &time) const
{
    return m_path + QStringLiteral(".unread-") + time.toString(QStringLiteral("yyMMddHHmmss"));
}

QString ConfigurationFile::datedCopyPath(const QDateTime &time) const
{
    return m_path + u'_' + time.toString(QStringLiteral("yyMMddHHmmss"));
}

QString ConfigurationFile::decode(const QByteArray &bytes)
{
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = utf8.decode(bytes);
    if (!utf8.hasError())
        return text;
    return QString::fromLatin1(bytes);
}

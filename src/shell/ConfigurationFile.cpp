#include "ConfigurationFile.h"

#include "platform/Clock.h"
#include "platform/ErrorPassing.h"
#include "platform/FileErrors.h"

#include <QFile>
#include <QSaveFile>
#include <QStringDecoder>

namespace {

// Replaces the file at path by bytes in one step: the bytes go to a temporary file in
// the same folder, which is renamed over the target only after everything was written.
void replaceFile(const QString &path, const QByteArray &bytes, const char *procedure)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        throw fileError(file, QLatin1String(procedure));
    if (file.write(bytes) != bytes.size())
        throw fileError(file, QLatin1String(procedure));
    if (!file.commit())
        throw fileError(file, QLatin1String(procedure));
}

} // namespace

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
        const QByteArray bytes = text.toUtf8();
        replaceFile(m_path, bytes, "dlgMain.WriteConfigurationFile");
        replaceFile(datedCopyPath(m_clock.now()), bytes, "dlgMain.WriteConfigurationFile");
        return true;
    });
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

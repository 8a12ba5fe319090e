#include "InstalledFiles.h"

#include "platform/ProgramFiles.h"
#include "platform/qlxLanguage.h"

#include <QDir>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QTranslator>

namespace InstalledFiles {

QStringList folders(const QString &executableFolder)
{
    const QDir bin(executableFolder);
    return {bin.absolutePath(), QDir::cleanPath(bin.absoluteFilePath(QStringLiteral("../share/")) +
                                                QLatin1String(ProgramFiles::kProgramBaseName))};
}

QString find(const QString &fileName, const QStringList &folders)
{
    for (const QString &folder : folders) {
        const QFileInfo candidate(QDir(folder).filePath(fileName));
        if (candidate.isFile())
            return candidate.absoluteFilePath();
    }
    return {};
}

QString chosenLanguage(const QString &option, const QLocale &desktop)
{
    if (!option.isEmpty())
        return option.compare(QLatin1String("en"), Qt::CaseInsensitive) == 0 ? QString()
                                                                             : option.toLower();
    return desktop.language() == QLocale::German ? QStringLiteral("de") : QString();
}

QString languageTable(const QString &language, const QStringList &folders)
{
    if (language.isEmpty())
        return {};
    return find(qlxLanguage::tableFileName(QLatin1String(ProgramFiles::kProgramBaseName), language),
                folders);
}

bool loadQtTexts(QTranslator &translator, const QString &language)
{
    return !language.isEmpty() &&
           translator.load(QLocale(language), QStringLiteral("qtbase"), QStringLiteral("_"),
                           QLibraryInfo::path(QLibraryInfo::TranslationsPath));
}

} // namespace InstalledFiles

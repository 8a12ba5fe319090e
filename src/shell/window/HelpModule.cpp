#include "HelpModule.h"

#include "platform/ErrorPassing.h"
#include "platform/ProgramError.h"
#include "platform/ProgramFiles.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>

HelpModule::HelpModule(QString mapFile, Opener opener)
    : m_mapFile(std::move(mapFile))
    , m_opener(opener ? std::move(opener) : Opener(&QDesktopServices::openUrl))
{}

QString HelpModule::mapFileName()
{
    return QLatin1String(ProgramFiles::kProgramBaseName) + QStringLiteral(".Help.Map");
}

void HelpModule::readMap()
{
    passOn("HelpModule.readMap", [&] {
        QFile file(m_mapFile);
        if (m_mapFile.isEmpty() || !file.open(QIODevice::ReadOnly | QIODevice::Text)) {
            throw ProgramError(ProgramError::kFileNotFound,
                               QStringLiteral("The help map %1 cannot be read")
                                   .arg(m_mapFile.isEmpty() ? mapFileName() : m_mapFile),
                               QStringLiteral("HelpModule.readMap"));
        }
        QHash<int, QString> pages;
        while (!file.atEnd()) {
            const QString line = QString::fromUtf8(file.readLine()).trimmed();
            if (line.isEmpty() || line.startsWith(u'#'))
                continue;
            const qsizetype equals = line.indexOf(u'=');
            bool ok = false;
            const int number = equals > 0 ? line.left(equals).trimmed().toInt(&ok) : 0;
            const QString page = line.mid(equals + 1).trimmed();
            if (!ok || page.isEmpty()) {
                throw ProgramError::raised(
                    QStringLiteral("The help map %1 has a line that is not NUMBER=page: %2")
                        .arg(m_mapFile, line),
                    QStringLiteral("HelpModule.readMap"));
            }
            pages.insert(number, page);
        }
        m_pages = pages;
        m_mapRead = true;
    });
}

QUrl HelpModule::topicUrl(int contextId)
{
    return passOn("HelpModule.topicUrl", [&] {
        if (!m_mapRead)
            readMap();
        const auto page = m_pages.constFind(contextId);
        if (page == m_pages.constEnd()) {
            throw ProgramError::raised(
                QStringLiteral("The help map has no topic %1").arg(contextId),
                QStringLiteral("HelpModule.topicUrl"));
        }
        const QString path = QFileInfo(m_mapFile).absoluteDir().filePath(*page);
        if (!QFileInfo(path).isFile()) {
            throw ProgramError(ProgramError::kFileNotFound,
                               QStringLiteral("The help page %1 is missing").arg(path),
                               QStringLiteral("HelpModule.topicUrl"));
        }
        return QUrl::fromLocalFile(path);
    });
}

bool HelpModule::ShowHelp(int contextId)
{
    return passOn("HelpModule.ShowHelp", [&] { return m_opener(topicUrl(contextId)); });
}

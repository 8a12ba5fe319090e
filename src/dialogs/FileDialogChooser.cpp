#include "FileDialogChooser.h"

#include "platform/MessageBoxes.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

FileDialogChooser::FileDialogChooser(MessageBoxes &messages, QString fallbackFolder)
    : m_messages(messages)
    , m_fallbackFolder(std::move(fallbackFolder))
{}

QString FileDialogChooser::chooseSaveFile(QWidget *parent, const SaveFileRequest &request)
{
    QFileDialog chooser(parent, request.title);
    chooser.setAcceptMode(QFileDialog::AcceptSave);
    chooser.setFileMode(QFileDialog::AnyFile);
    chooser.setNameFilter(request.filter);
    chooser.setDefaultSuffix(request.defaultSuffix);
    chooser.setOption(QFileDialog::DontConfirmOverwrite);
    const QFileInfo start(request.startPath);
    const bool startFolderExists = start.isAbsolute() && start.dir().exists();
    chooser.setDirectory(startFolderExists ? start.absolutePath() : m_fallbackFolder);
    if (!request.startPath.isEmpty())
        chooser.selectFile(start.fileName());
    while (chooser.exec() == QDialog::Accepted) {
        const QStringList chosen = chooser.selectedFiles();
        if (chosen.isEmpty())
            return {};
        const QFileInfo file(chosen.constFirst());
        if (file.dir().exists())
            return QDir::toNativeSeparators(file.absoluteFilePath());
        m_messages.critical(request.title, QDir::toNativeSeparators(file.absolutePath()) +
                                               QStringLiteral("\r\nPath not found"));
    }
    return {};
}

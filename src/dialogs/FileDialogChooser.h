#pragma once

#include "SaveFileChooser.h"

#include <QString>

class MessageBoxes;

// The file-save chooser of the desktop program, a QFileDialog. It opens in the folder
// of the start path, else in the fallback folder (the data folder), never in whatever
// folder the program happened to start in. A path whose folder does not exist (typed by
// hand) is refused with a message and the chooser stays open, so the data log is never
// pointed at a folder that cannot take it. An existing file is taken without asking
// whether to replace it: the data log is only ever appended to.
class FileDialogChooser : public SaveFileChooser
{
public:
    FileDialogChooser(MessageBoxes &messages, QString fallbackFolder);

    QString chooseSaveFile(QWidget *parent, const SaveFileRequest &request) override;

private:
    MessageBoxes &m_messages;
    QString m_fallbackFolder;
};

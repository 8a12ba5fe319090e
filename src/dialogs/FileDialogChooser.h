#pragma once

#include "SaveFileChooser.h"

class MessageBoxes;

// The file-save chooser of the desktop program, a QFileDialog. A path whose folder does
// not exist (typed by hand) is refused with a message and the chooser stays open, so
// the data log is never pointed at a folder that cannot take it.
class FileDialogChooser : public SaveFileChooser
{
public:
    explicit FileDialogChooser(MessageBoxes &messages);

    QString chooseSaveFile(QWidget *parent, const SaveFileRequest &request) override;

private:
    MessageBoxes &m_messages;
};

#pragma once

#include <QString>

class QWidget;

// What the user is asked when choosing a file to write: the window title, the file
// type filter in Qt's form ("Text Files (*.txt)"), the extension added to a name typed
// without one, and the path to start from.
struct SaveFileRequest
{
    QString title;
    QString filter;
    QString defaultSuffix;
    QString startPath;
};

// The standard file-save chooser, behind an interface so that the dialogs that use it
// can be driven in tests without a screen.
class SaveFileChooser
{
public:
    virtual ~SaveFileChooser() = default;

    // The chosen path, in a folder that exists; empty when the user cancelled.
    virtual QString chooseSaveFile(QWidget *parent, const SaveFileRequest &request) = 0;
};

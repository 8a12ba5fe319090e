#pragma once

#include "ManualClock.h"
#include "RecordingErrorReport.h"
#include "RecordingMessageBoxes.h"

#include "dialogs/SaveFileChooser.h"
#include "dialogs/SetupServices.h"
#include "platform/ProgramFiles.h"
#include "platform/qlxLanguage.h"
#include "sampling/DatabaseSupport.h"

#include <QApplication>
#include <QLineEdit>
#include <QList>
#include <QTest>
#include <QWidget>

// A file chooser that gives the answers a test lined up, one per question, and keeps
// the questions; with no answer left it cancels.
class ScriptedFileChooser : public SaveFileChooser
{
public:
    QString chooseSaveFile(QWidget *, const SaveFileRequest &request) override
    {
        requests.append(request);
        return answers.isEmpty() ? QString() : answers.takeFirst();
    }

    QStringList answers;
    QList<SaveFileRequest> requests;
};

// The services a setup dialog is built with in a test: reports and messages that are
// kept for inspection, a file chooser answered by the test, an event log viewer that is
// only recorded, and a clock that stands still.
struct DialogFixture
{
    DialogFixture()
        : files(QStringLiteral("/srv/Corvane"))
        , database(
              errors, files, [] { return true; }, libraryFlag,
              [this](const DatabaseSupport::ViewerCommand &command) {
                  viewerCommands.append(command);
                  return true;
              })
    {}

    SetupServices services()
    {
        return SetupServices{.errors = errors,
                             .messages = messages,
                             .database = database,
                             .fileChooser = chooser,
                             .clock = clock,
                             .measurementSystem = MeasurementSystem::Metric};
    }

    RecordingErrorReport errors;
    RecordingMessageBoxes messages;
    ScriptedFileChooser chooser;
    ManualClock clock;
    qlxLanguage language;
    ProgramFiles files;
    DatabaseSupport::LibraryFlag libraryFlag;
    QList<DatabaseSupport::ViewerCommand> viewerCommands;
    DatabaseSupport database;
};

// The child of a dialog by its object name, failing the test when it is missing.
template <typename Widget> Widget *control(QWidget *dialog, const char *name)
{
    auto *widget = dialog->findChild<Widget *>(QLatin1String(name));
    if (!widget)
        qFatal("no control %s", name);
    return widget;
}

inline void click(QWidget *dialog, const char *button)
{
    QTest::mouseClick(control<QWidget>(dialog, button), Qt::LeftButton);
}

// Replaces a field's text by typing, as the user does.
inline void retype(QLineEdit *edit, const QString &text)
{
    edit->setFocus();
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_Backspace);
    QTest::keyClicks(edit, text);
}

// Clicks a check box on its box, at the left end, where a wide box still reacts.
inline void tick(QWidget *dialog, const char *checkBox)
{
    QWidget *box = control<QWidget>(dialog, checkBox);
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(6, box->height() / 2));
}

// Keeps a picture of a dialog as the user sees it when CORVANE_SCREENSHOT_DIR names a
// folder; the pictures in the documentation are made this way.
inline void keepPicture(QWidget *dialog, const QString &fileName)
{
    const QString folder = qEnvironmentVariable("CORVANE_SCREENSHOT_DIR");
    if (folder.isEmpty())
        return;
    QApplication::processEvents();
    if (!dialog->grab().save(folder + u'/' + fileName))
        qWarning("could not save %s", qPrintable(fileName));
}

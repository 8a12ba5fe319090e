#include "DialogFixture.h"

#include "dialogs/FileDialogChooser.h"
#include "dialogs/dlgDataLogging.h"
#include "platform/ProgramError.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

namespace {

QString status(dlgDataLogging &dialog)
{
    return control<QLabel>(&dialog, "lblStatus")->text();
}

QLineEdit *fileField(dlgDataLogging &dialog)
{
    return control<QLineEdit>(&dialog, "txtFile");
}

// The file field and its chooser button are usable together or not at all.
bool fileControlsEnabled(dlgDataLogging &dialog)
{
    const bool field = fileField(dialog)->isEnabled();
    return field == control<QPushButton>(&dialog, "bnSelect")->isEnabled() ? field : !field;
}

} // namespace

// The data logging dialog as the engineer uses it: switching the log on, choosing the
// file, the file test with its size or its error, and what OK and Cancel hand back.
class TestDataLogging : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QLocale::setDefault(QLocale::c());
        QVERIFY(m_folder.isValid());
    }

    void switchingOnAsksForAFileAndTestsIt()
    {
        DialogFixture fixture;
        const QString path = m_folder.filePath(QStringLiteral("new-welds.txt"));
        fixture.chooser.answers = {path};
        dlgDataLogging dialog(fixture.language, fixture.services());
        dialog.setDataLogging(false, QString());
        dialog.show();
        QVERIFY(!fileControlsEnabled(dialog));

        tick(&dialog, "chkEnabled");
        QVERIFY(fileControlsEnabled(dialog));
        QCOMPARE(fixture.chooser.requests.size(), 1);
        const SaveFileRequest &request = fixture.chooser.requests.constFirst();
        QCOMPARE(request.title, QStringLiteral("Data Logging"));
        QCOMPARE(request.filter, QStringLiteral("Text Files (*.txt)"));
        QCOMPARE(request.defaultSuffix, QStringLiteral("txt"));
        QCOMPARE(fileField(dialog)->text(), path);
        QCOMPARE(fileField(dialog)->cursorPosition(), path.size());
        // The test created the file, empty.
        QCOMPARE(status(dialog), QStringLiteral("File Size: 0.000 Kbytes"));
        QCOMPARE(QFileInfo(path).size(), 0);
        QVERIFY(QFileInfo(path).isFile());

        click(&dialog, "OKButton");
        QVERIFY(dialog.isAccepted() && dialog.changed());
        QVERIFY(dialog.dataLoggingEnabled());
        QCOMPARE(dialog.dataLogFile(), path);
    }

    void existingFileShowsItsSizeAndKeepsItsContent()
    {
        DialogFixture fixture;
        const QString path = m_folder.filePath(QStringLiteral("old-welds.txt"));
        QFile old(path);
        QVERIFY(old.open(QIODevice::WriteOnly) && old.write(QByteArray(1536, 'w')) == 1536);
        old.close();
        fixture.chooser.answers = {path};
        dlgDataLogging dialog(fixture.language, fixture.services());
        dialog.setDataLogging(true, m_folder.filePath(QStringLiteral("other.txt")));
        dialog.show();
        QVERIFY(fileControlsEnabled(dialog));

        click(&dialog, "bnSelect");
        QCOMPARE(fixture.chooser.requests.constFirst().startPath,
                 m_folder.filePath(QStringLiteral("other.txt")));
        QCOMPARE(status(dialog), QStringLiteral("File Size: 1.500 Kbytes"));
        QCOMPARE(QFileInfo(path).size(), 1536);
        keepPicture(&dialog, QStringLiteral("data-logging.png"));

        // A cancelled chooser changes nothing.
        click(&dialog, "bnSelect");
        QCOMPARE(fileField(dialog)->text(), path);
        QCOMPARE(status(dialog), QStringLiteral("File Size: 1.500 Kbytes"));
    }

    void okRefusesAMissingFileOrFolder()
    {
        DialogFixture fixture;
        dlgDataLogging dialog(fixture.language, fixture.services());
        dialog.setDataLogging(false, QString());
        dialog.show();
        // Switched on, the chooser cancelled: nothing to test yet, and OK asks for a file.
        tick(&dialog, "chkEnabled");
        QCOMPARE(status(dialog), QString());
        click(&dialog, "OKButton");
        QCOMPARE(fixture.messages.count(), 1);
        QCOMPARE(fixture.messages.last().text, QStringLiteral("Specify Filename"));
        QVERIFY(dialog.isVisible());

        const QString path = m_folder.filePath(QStringLiteral("no-such-folder/welds.txt"));
        QTest::keyClicks(fileField(dialog), path);
        click(&dialog, "OKButton");
        const QString number = QString::number(ProgramError::kPathNotFound) + " - ";
        QVERIFY2(status(dialog).startsWith(number), qPrintable(status(dialog)));
        QVERIFY(status(dialog).size() > number.size());
        QVERIFY(dialog.isVisible() && !dialog.isAccepted());
        QVERIFY(!QFileInfo::exists(QFileInfo(path).path()));
        QCOMPARE(fixture.messages.count(), 1);
    }

    void uncheckingKeepsThePathAndOkStoresTheFlag()
    {
        DialogFixture fixture;
        const QString path = m_folder.filePath(QStringLiteral("kept.txt"));
        dlgDataLogging dialog(fixture.language, fixture.services());
        dialog.setDataLogging(true, path);
        dialog.show();
        QVERIFY(control<QCheckBox>(&dialog, "chkEnabled")->isChecked());
        tick(&dialog, "chkEnabled");
        QVERIFY(!fileControlsEnabled(dialog));
        QCOMPARE(fileField(dialog)->text(), path);
        click(&dialog, "OKButton");
        QVERIFY(dialog.isAccepted() && dialog.changed());
        QVERIFY(!dialog.dataLoggingEnabled());
        QCOMPARE(dialog.dataLogFile(), path);
        // Switched off, the file is not touched.
        QVERIFY(!QFileInfo::exists(path));
        QVERIFY(fixture.chooser.requests.isEmpty());
    }

    // The real chooser opens in the current data log's folder, else in the data folder,
    // and an existing file is taken without a question, since the log is appended to.
    void chooserOpensWhereTheLogIs()
    {
        DialogFixture fixture;
        QVERIFY(QDir(m_folder.path()).mkpath(QStringLiteral("logs/data")));
        FileDialogChooser chooser(fixture.messages, m_folder.filePath(QStringLiteral("logs/data")));
        QStringList opened;
        const auto look = [&] {
            auto *shown = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
            opened << QDir(m_folder.path()).relativeFilePath(shown->directory().absolutePath());
            QVERIFY(shown->testOption(QFileDialog::DontConfirmOverwrite));
            shown->reject();
        };
        for (const QString &start : {m_folder.filePath(QStringLiteral("logs/w.txt")), QString(),
                                     QStringLiteral("w.txt")}) {
            QTimer::singleShot(0, this, look);
            chooser.chooseSaveFile(nullptr, {"Data Logging", "Text Files (*.txt)", "txt", start});
        }
        QCOMPARE(opened, (QStringList{"logs", "logs/data", "logs/data"}));
    }

private:
    QTemporaryDir m_folder;
};

QTEST_MAIN(TestDataLogging)
#include "tst_datalogging.moc"

#pragma once

#include <QLocale>
#include <QString>
#include <QStringList>

class QTranslator;

// The files that come with the program: the help map and its pages, the translation
// tables. They lie beside the executable (the build tree, a Windows installation) or in
// share/corvane-monitor next to its bin folder (a Linux installation).
namespace InstalledFiles {

// The folders searched, in order.
QStringList folders(const QString &executableFolder);
// The first file of that name in folders; empty when none has it.
QString find(const QString &fileName, const QStringList &folders);

// The language of the window's captions: the --lang option when given ("en" stands for
// the built-in texts and gives the empty text), else "de" when the desktop speaks
// German, else the empty text.
QString chosenLanguage(const QString &option, const QLocale &desktop = QLocale::system());
// The translation table of a language among folders; empty for the built-in texts or
// when no table of that language is installed.
QString languageTable(const QString &language, const QStringList &folders);
// Loads Qt's own texts (the Yes and No of message boxes, the file chooser) in a language
// from Qt's translations folder; false for the built-in texts or when Qt has none.
bool loadQtTexts(QTranslator &translator, const QString &language);

} // namespace InstalledFiles

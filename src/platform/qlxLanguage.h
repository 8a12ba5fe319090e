#pragma once

#include <QHash>
#include <QString>
#include <QStringView>

// The language service. Every caption and message is a token "N|default text"; the
// service returns the translation of number N from its table, or the default text when
// the table has none. Texts are returned as they stand, trailing blanks included: the
// callers join them ("Time " + "Energy ").
//
// One number names one caption, which the program shows in several forms: "6007|Weld Time"
// heads a data log column, "6007|Weld Time: " labels a value, "6335|&Data Logging..." is a
// menu item and "6335|Data Logging" the dialog's title. A table gives the words once; the
// translation takes its form from the token's default text: the default's ending
// (trailing blanks, a colon, an ellipsis) replaces the table text's own, and the '&' of
// an access key is dropped where the default has none.
//
// Translation tables are UTF-8 text files, one entry per line: the number, a vertical
// bar, the text up to the end of the line. Empty lines and lines starting with '#' are
// skipped; "\t", "\n" and "\\" in a text stand for a tab, a line break and a backslash.
class qlxLanguage
{
public:
    qlxLanguage() = default;

    // Reads a table; returns false (keeping the entries read so far) with a message in
    // errorText when the file cannot be read or a line is malformed.
    bool loadTable(const QString &path, QString *errorText = nullptr);
    void setText(int number, const QString &text);

    QString Translate(QStringView token) const;
    // A count in words: the token for one when count is 1, else the one for every other
    // number (English and German agree on that rule), with %1 replaced by the count.
    QString TranslateCount(QStringView one, QStringView many, qint64 count) const;
    // A table text in the form of a default text, as Translate returns it.
    static QString inFormOf(QStringView defaultText, QStringView tableText);

    // The number and default text of a token; number -1 when the token has no number.
    static int tokenNumber(QStringView token);
    static QStringView defaultText(QStringView token);

    // The table file of a language ("de") in a folder: corvane-monitor.de.lang.
    static QString tableFileName(const QString &programBaseName, const QString &language);

    int entryCount() const { return int(m_texts.size()); }

private:
    QHash<int, QString> m_texts;
};

#pragma once

#include <QHash>
#include <QString>
#include <QStringView>

// The language service. Every caption and message is a token "N|default text"; the
// service returns the translation of number N from its table, or the default text when
// the table has none. Texts are returned as they stand, trailing blanks included: the
// callers join them ("Time " + "Energy ").
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

    // The number and default text of a token; number -1 when the token has no number.
    static int tokenNumber(QStringView token);
    static QStringView defaultText(QStringView token);

    // The table file of a language ("de") in a folder: corvane-monitor.de.lang.
    static QString tableFileName(const QString &programBaseName, const QString &language);

    int entryCount() const { return int(m_texts.size()); }

private:
    QHash<int, QString> m_texts;
};

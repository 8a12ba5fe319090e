#include "CsvReader.h"

namespace {

class Scanner
{
public:
    explicit Scanner(const QString &text)
        : m_text(text)
    {}

    bool atEnd() const { return m_at >= m_text.size(); }
    int line() const { return m_line; }

    // One field; returns false on a quote that is not closed or is followed by more text.
    bool field(QString &value)
    {
        // An empty field is an empty text, not a missing one: the database keeps it as
        // such.
        value = QStringLiteral("");
        if (atEnd() || m_text[m_at] != u'"') {
            while (!atEnd() && m_text[m_at] != u',' && m_text[m_at] != u'\n' &&
                   m_text[m_at] != u'\r')
                value += m_text[m_at++];
            return true;
        }
        ++m_at;
        for (;;) {
            if (atEnd())
                return false;
            const QChar c = m_text[m_at++];
            if (c == u'\n')
                ++m_line;
            if (c != u'"') {
                value += c;
                continue;
            }
            if (!atEnd() && m_text[m_at] == u'"') {
                value += u'"';
                ++m_at;
                continue;
            }
            return atEnd() || m_text[m_at] == u',' || m_text[m_at] == u'\n' ||
                   m_text[m_at] == u'\r';
        }
    }

    // After a field: true when another field of the same row follows.
    bool nextInRow()
    {
        if (!atEnd() && m_text[m_at] == u',') {
            ++m_at;
            return true;
        }
        if (!atEnd() && m_text[m_at] == u'\r')
            ++m_at;
        if (!atEnd() && m_text[m_at] == u'\n') {
            ++m_at;
            ++m_line;
        }
        return false;
    }

private:
    const QString &m_text;
    qsizetype m_at = 0;
    int m_line = 1;
};

} // namespace

bool CsvReader::parse(const QString &text, QList<QStringList> &rows, QString &errorText)
{
    rows.clear();
    Scanner scanner(text);
    while (!scanner.atEnd()) {
        QStringList row;
        do {
            QString value;
            if (!scanner.field(value)) {
                errorText = QStringLiteral("line %1: a quoted field is not closed properly")
                                .arg(scanner.line());
                return false;
            }
            row.append(value);
        } while (scanner.nextInRow());
        rows.append(row);
    }
    return true;
}

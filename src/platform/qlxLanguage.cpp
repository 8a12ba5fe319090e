#include "qlxLanguage.h"

#include <QFile>

namespace {

QString unescape(QStringView text)
{
    QString result;
    result.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c != u'\\' || i + 1 == text.size()) {
            result += c;
            continue;
        }
        const QChar next = text[++i];
        if (next == u't')
            result += u'\t';
        else if (next == u'n')
            result += u'\n';
        else
            result += next;
    }
    return result;
}

} // namespace

bool qlxLanguage::loadTable(const QString &path, QString *errorText)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (errorText)
            *errorText = file.errorString();
        return false;
    }
    const QString content = QString::fromUtf8(file.readAll());
    int lineNumber = 0;
    for (QStringView line : QStringView(content).split(u'\n')) {
        ++lineNumber;
        if (line.endsWith(u'\r'))
            line.chop(1);
        if (line.isEmpty() || line.startsWith(u'#'))
            continue;
        const int number = tokenNumber(line);
        if (number < 0) {
            if (errorText)
                *errorText =
                    QStringLiteral("%1:%2: expected NUMBER|TEXT").arg(path).arg(lineNumber);
            return false;
        }
        m_texts.insert(number, unescape(defaultText(line)));
    }
    return true;
}

void qlxLanguage::setText(int number, const QString &text)
{
    m_texts.insert(number, text);
}

QString qlxLanguage::Translate(QStringView token) const
{
    const int number = tokenNumber(token);
    if (number >= 0) {
        const auto found = m_texts.constFind(number);
        if (found != m_texts.constEnd())
            return inFormOf(defaultText(token), *found);
    }
    return defaultText(token).toString();
}

QString qlxLanguage::TranslateCount(QStringView one, QStringView many, qint64 count) const
{
    return Translate(count == 1 ? one : many).arg(count);
}

namespace {

// The ending of a caption that belongs to its place rather than to its words: trailing
// blanks that separate it from the words that follow, a colon before a value, or the
// ellipsis of a command that opens a dialog. A full stop is part of the words ("k. A.").
qsizetype endingStart(QStringView text)
{
    qsizetype start = text.size();
    while (start > 0 && text[start - 1] == u' ')
        --start;
    const QStringView rest = text.first(start);
    if (rest.endsWith(u"..."))
        return start - 3;
    if (rest.endsWith(QChar(0x2026)) || rest.endsWith(u':'))
        return start - 1;
    return start;
}

bool hasAccessKey(QStringView text)
{
    for (qsizetype i = 0; i + 1 < text.size(); ++i) {
        if (text[i] == u'&') {
            if (text[i + 1] != u'&')
                return true;
            ++i;
        }
    }
    return false;
}

} // namespace

QString qlxLanguage::inFormOf(QStringView defaultText, QStringView tableText)
{
    QString result = tableText.first(endingStart(tableText)).toString();
    if (!hasAccessKey(defaultText)) {
        for (qsizetype i = 0; i < result.size(); ++i) {
            if (result[i] == u'&' && i + 1 < result.size() && result[i + 1] != u'&')
                result.remove(i, 1);
            else if (result[i] == u'&')
                ++i;
        }
    }
    result += defaultText.sliced(endingStart(defaultText));
    return result;
}

int qlxLanguage::tokenNumber(QStringView token)
{
    const qsizetype bar = token.indexOf(u'|');
    if (bar <= 0)
        return -1;
    bool ok = false;
    const int number = token.first(bar).toInt(&ok);
    return ok && number >= 0 ? number : -1;
}

QStringView qlxLanguage::defaultText(QStringView token)
{
    if (tokenNumber(token) < 0)
        return token;
    return token.sliced(token.indexOf(u'|') + 1);
}

QString qlxLanguage::tableFileName(const QString &programBaseName, const QString &language)
{
    return programBaseName + u'.' + language + QStringLiteral(".lang");
}

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
                *errorText = QStringLiteral("%1:%2: expected NUMBER|TEXT").arg(path).arg(lineNumber);
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
            return *found;
    }
    return defaultText(token).toString();
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

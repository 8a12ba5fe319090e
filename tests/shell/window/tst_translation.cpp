#include "platform/qlxLanguage.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <QTest>
#include <algorithm>

namespace {

// A language token in the sources: a number, a bar and the default text, as one string
// literal or as adjacent literals that the compiler joins.
struct TokenUse
{
    QString text;
    QString place;
};

QString unescapeLiteral(const QString &body)
{
    QString text;
    for (qsizetype i = 0; i < body.size(); ++i) {
        if (body[i] == u'\\' && i + 1 < body.size()) {
            const QChar next = body[++i];
            text += next == u'n' ? QChar(u'\n') : next == u't' ? QChar(u'\t') : next;
        } else {
            text += body[i];
        }
    }
    return text;
}

QMap<int, QList<TokenUse>> tokensInSources(const QString &folder)
{
    static const QRegularExpression literals(
        QStringLiteral("(?<![\\w\\\\])(?:u|u8|L)?\"((?:[^\"\\\\\\n]|\\\\.)*)\"(?:\\s*(?:u|u8|L)?\"("
                       "(?:[^\"\\\\\\n]|\\\\.)*)\")*"));
    static const QRegularExpression piece(QStringLiteral("\"((?:[^\"\\\\\\n]|\\\\.)*)\""));
    static const QRegularExpression token(QStringLiteral("^(\\d+)\\|"));
    QMap<int, QList<TokenUse>> uses;
    QDirIterator files(folder, {QStringLiteral("*.cpp"), QStringLiteral("*.h")}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QString content = QString::fromUtf8(file.readAll());
        for (auto match = literals.globalMatch(content); match.hasNext();) {
            const QRegularExpressionMatch literal = match.next();
            QString text;
            for (auto part = piece.globalMatch(literal.captured(0)); part.hasNext();)
                text += unescapeLiteral(part.next().captured(1));
            const QRegularExpressionMatch number = token.match(text);
            if (!number.hasMatch())
                continue;
            const int line = int(content.left(literal.capturedStart()).count(u'\n')) + 1;
            uses[number.captured(1).toInt()].append(
                {text.mid(number.capturedLength()),
                 QStringLiteral("%1:%2").arg(QDir(folder).relativeFilePath(path)).arg(line)});
        }
    }
    return uses;
}

// The ending that a caption's place adds to its words: trailing blanks, a colon before
// a value, the ellipsis of a command that opens a dialog.
QString ending(const QString &text)
{
    qsizetype start = text.size();
    while (start > 0 && text[start - 1] == u' ')
        --start;
    if (text.first(start).endsWith(QLatin1String("...")))
        start -= 3;
    else if (text.first(start).endsWith(u':') || text.first(start).endsWith(QChar(0x2026)))
        start -= 1;
    return text.mid(start);
}

// The words of a caption without its form: one number stands for one caption, which the
// program shows in several forms ("6008|Energy", "6008|Energy " and "6008|Energy: ";
// "6335|&Data Logging..." and "6335|Data Logging"). Texts are therefore compared without
// their ending of blanks, colon or ellipsis and without access keys.
QString words(const QString &text)
{
    QString result = text;
    result.chop(ending(text).size());
    return result.remove(u'&');
}

const QString kTablesFolder = QStringLiteral(CORVANE_SOURCE_DIR "/translations");

// Whether a literal's text is words a user reads: a letter outside escape sequences,
// and no language number in front. Names shown as they stand in every language are
// listed by the caller.
bool isBareCaption(const QString &literal)
{
    static const QRegularExpression escapes(QStringLiteral("\\\\(u[0-9a-fA-F]{4}|.)"));
    static const QRegularExpression numbered(QStringLiteral("^\\d+\\|"));
    const QString text = QString(literal).remove(escapes);
    return !numbered.match(literal).hasMatch() &&
           std::any_of(text.cbegin(), text.cend(), [](QChar c) { return c.isLetter(); });
}

// The places in a source's text where a caption bypasses the language service: a
// literal handed to a control's text, title, tooltip, list or message box, a token
// without a number handed to the service, and in a captions header any token without
// a number. Object names, log categories, settings keys and error descriptions are
// handed to other calls and are not captions.
QStringList bypassingCaptions(const QString &content, bool captionsHeader)
{
    static const QString literal =
        QStringLiteral("(?:QStringLiteral|QLatin1String|QString::fromUtf8|tr)?\\(?\\s*u?"
                       "\"((?:[^\"\\\\\\n]|\\\\.)*)\"");
    static const QRegularExpression handedToControl(
        QStringLiteral("\\b(?:setText|setTitle|setWindowTitle|setToolTip|setPlaceholderText|"
                       "addItem|addButton|setHeaderLabels|setHorizontalHeaderLabels|showMessage|"
                       "critical|question|information|warning|[Tt]ranslate|new Q(?:PushButton|"
                       "Label|CheckBox|RadioButton|GroupBox|ToolButton))\\(\\s*\\{?\\s*") +
        literal);
    // A token's first literal; the pieces of a text continued over lines follow a literal.
    static const QRegularExpression anyToken(
        QStringLiteral("[={,]\\s*u\"((?:[^\"\\\\\\n]|\\\\.)*)\""));
    // Shown as they stand in every language: the SPC database product's name.
    static const QStringList names{QStringLiteral("Meridal Ambrel")};
    QStringList found;
    for (const QRegularExpression *pattern : {&handedToControl, &anyToken}) {
        if (pattern == &anyToken && !captionsHeader)
            continue;
        for (auto match = pattern->globalMatch(content); match.hasNext();) {
            const QString text = match.next().captured(1);
            if (isBareCaption(text) && !names.contains(text))
                found.append(text);
        }
    }
    return found;
}

} // namespace

// The shipped translation tables against the tokens of the program's sources: every
// token the program shows is translated, no number carries two different captions, and
// the tables read as the language service reads them.
class TestTranslation : public QObject
{
    Q_OBJECT

private:
    QMap<int, QList<TokenUse>> m_uses;

    static QStringList tables()
    {
        QStringList paths;
        for (const QString &name :
             QDir(kTablesFolder).entryList({QStringLiteral("corvane-monitor.*.lang")}))
            paths.append(QDir(kTablesFolder).filePath(name));
        return paths;
    }

private slots:
    void initTestCase()
    {
        m_uses = tokensInSources(QStringLiteral(CORVANE_SOURCE_DIR "/src"));
        // The scan must see the program's tokens at all, or every check below passes.
        QVERIFY2(m_uses.size() > 150, qPrintable(QString::number(m_uses.size())));
        QVERIFY(m_uses.contains(6052));
        QVERIFY(m_uses.contains(3791));
        QVERIFY(!tables().isEmpty());
    }

    void everyNumberHasOneCaption()
    {
        QStringList conflicts;
        for (auto it = m_uses.cbegin(); it != m_uses.cend(); ++it) {
            const QString first = words(it->first().text);
            for (const TokenUse &use : *it) {
                if (words(use.text) != first) {
                    conflicts.append(
                        QStringLiteral("%1: \"%2\" (%3) and \"%4\" (%5)")
                            .arg(it.key())
                            .arg(it->first().text, it->first().place, use.text, use.place));
                }
            }
        }
        QVERIFY2(conflicts.isEmpty(), qPrintable(conflicts.join(u'\n')));
    }

    void everyTokenIsTranslated_data()
    {
        QTest::addColumn<QString>("table");
        for (const QString &path : tables())
            QTest::newRow(qPrintable(QFileInfo(path).fileName())) << path;
    }

    // Each table, read line by line as the language service reads it, gives every token
    // of the program one text that is not empty, and no number twice.
    void everyTokenIsTranslated()
    {
        QFETCH(QString, table);
        qlxLanguage language;
        QString error;
        QVERIFY2(language.loadTable(table, &error), qPrintable(error));
        QFile file(table);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
        QSet<int> seen;
        QStringList problems;
        for (qsizetype i = 0; i < lines.size(); ++i) {
            const QString line = lines[i];
            if (line.isEmpty() || line.startsWith(u'#'))
                continue;
            const int number = qlxLanguage::tokenNumber(line);
            const QString text = qlxLanguage::defaultText(line).toString();
            const QString where = QStringLiteral("line %1: %2").arg(i + 1).arg(line);
            if (seen.contains(number))
                problems.append(where + QStringLiteral(" (number given twice)"));
            seen.insert(number);
            if (text.isEmpty())
                problems.append(where + QStringLiteral(" (empty)"));
            if (!m_uses.contains(number)) {
                qWarning("%s: number %d is not used by the program", qPrintable(table), number);
                continue;
            }
            // The place supplies the ending; one in the table that no place has would be
            // dropped unseen ("Verbinde:" for "Connected" would show as "Verbinde").
            QSet<QString> endings;
            for (const TokenUse &use : m_uses.value(number))
                endings.insert(ending(use.text));
            if (!endings.contains(ending(text)) && !ending(text).isEmpty())
                problems.append(where + QStringLiteral(" (ends in \"%1\", which the program "
                                                       "never shows there)")
                                            .arg(ending(text)));
        }
        for (auto it = m_uses.cbegin(); it != m_uses.cend(); ++it) {
            if (!seen.contains(it.key()))
                problems.append(QStringLiteral("not translated: %1|%2 (%3)")
                                    .arg(it.key())
                                    .arg(it->first().text, it->first().place));
        }
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join(u'\n')));
    }

    // Every caption of a window goes through the language service with a number; one
    // that does not stays English under every language.
    void noCaptionBypassesTheLanguageService()
    {
        // The scan finds what it looks for, and only that.
        QCOMPARE(bypassingCaptions(QStringLiteral("b->setText(QStringLiteral(\"Close\"));"
                                                  "b->setObjectName(QStringLiteral(\"bnClose\"));"
                                                  "new QLabel(u\"7000|Last weld\", this);"),
                                   false),
                 QStringList{"Close"});

        QStringList problems;
        const QDir sources(QStringLiteral(CORVANE_SOURCE_DIR "/src"));
        QDirIterator files(sources.path(), {QStringLiteral("*.cpp"), QStringLiteral("*.h")},
                           QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString path = files.next();
            QFile file(path);
            QVERIFY(file.open(QIODevice::ReadOnly));
            for (const QString &text :
                 bypassingCaptions(QString::fromUtf8(file.readAll()), path.endsWith(u"Captions.h")))
                problems.append(sources.relativeFilePath(path) + QStringLiteral(": ") + text);
        }
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join(u'\n')));
    }

    // One part, two parts: the singular for one only, in both languages.
    void countsInWords()
    {
        qlxLanguage english, german;
        QVERIFY(
            german.loadTable(QDir(kTablesFolder)
                                 .filePath(qlxLanguage::tableFileName(
                                     QStringLiteral("corvane-monitor"), QStringLiteral("de")))));
        const auto parts = [](const qlxLanguage &language, int count) {
            return language.TranslateCount(u"7330|%1 part", u"7331|%1 parts", count);
        };
        QCOMPARE(
            (QStringList{parts(english, 1), parts(english, 0), parts(german, 1), parts(german, 2)}),
            (QStringList{"1 part", "0 parts", "1 Teil", "2 Teile"}));
    }

    void captionsTakeTheFormOfTheirPlace_data()
    {
        QTest::addColumn<QString>("token");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *place, const char *token, const char *expected) {
            QTest::newRow(place) << QString::fromUtf8(token) << QString::fromUtf8(expected);
        };
        row("before a value", "6007|Weld Time: ", "Schweißzeit: ");
        row("joined word", "24|Time ", "Zeit ");
        row("menu item", "6335|&Data Logging...", "&Datenprotokollierung...");
        row("access key moved", "3791|S&hut Down...", "&Beenden...");
        row("sentence", "1844|NO PART! A part must be selected before continuing.",
            "KEIN TEIL! Vor dem Fortfahren muss ein Teil ausgewählt werden.");
        row("no number", "Last weld", "Last weld");
    }

    void captionsTakeTheFormOfTheirPlace()
    {
        QFETCH(QString, token);
        QFETCH(QString, expected);
        qlxLanguage german;
        QVERIFY(
            german.loadTable(QDir(kTablesFolder)
                                 .filePath(qlxLanguage::tableFileName(
                                     QStringLiteral("corvane-monitor"), QStringLiteral("de")))));
        QCOMPARE(german.Translate(token), expected);
    }
};

QTEST_GUILESS_MAIN(TestTranslation)
#include "tst_translation.moc"

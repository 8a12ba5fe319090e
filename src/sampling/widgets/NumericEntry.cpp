#include "NumericEntry.h"

#include "platform/ProgramError.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTimer>

#include <cmath>
#include <limits>

namespace NumericEntry {

int EvaluateNumericKey(int keyCode)
{
    if (keyCode < 32 || keyCode == 127)
        return keyCode;
    if (keyCode >= '0' && keyCode <= '9')
        return keyCode;
    return 0;
}

double numericValue(QStringView text)
{
    qsizetype end = 0;
    const qsizetype size = text.size();
    while (end < size && text[end].isSpace())
        ++end;
    const qsizetype start = end;
    const auto isDigit = [&](qsizetype at) {
        return at < size && text[at] >= u'0' && text[at] <= u'9';
    };
    if (end < size && (text[end] == u'+' || text[end] == u'-'))
        ++end;
    qsizetype digits = 0;
    while (isDigit(end)) {
        ++end;
        ++digits;
    }
    if (end < size && text[end] == u'.') {
        ++end;
        while (isDigit(end)) {
            ++end;
            ++digits;
        }
    }
    if (digits == 0)
        return 0;
    // An exponent counts only when digits follow it: "5e" is 5.
    if (end < size && (text[end] == u'e' || text[end] == u'E')) {
        qsizetype exponent = end + 1;
        if (exponent < size && (text[exponent] == u'+' || text[exponent] == u'-'))
            ++exponent;
        if (isDigit(exponent)) {
            while (isDigit(exponent))
                ++exponent;
            end = exponent;
        }
    }
    bool ok = false;
    const double value = text.sliced(start, end - start).toString().toDouble(&ok);
    return ok ? value : 0;
}

qint32 roundToInt32(double value, const char *source)
{
    const double rounded = std::nearbyint(value);
    if (!std::isfinite(rounded) || rounded < std::numeric_limits<qint32>::min() ||
        rounded > std::numeric_limits<qint32>::max())
        throw ProgramError(ProgramError::kOverflow, QStringLiteral("Overflow"),
                           QLatin1String(source));
    return qint32(rounded);
}

} // namespace NumericEntry

bool NumericKeyFilter::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        // Control with a letter is a command (select all, copy, paste) whose code lies
        // below 32 wherever the system reports it as a character. Keys without text
        // (arrows, Home, Delete) have no code to judge. Both pass.
        const Qt::KeyboardModifiers chord =
            key->modifiers() & (Qt::ControlModifier | Qt::AltModifier);
        if (chord == Qt::ControlModifier)
            return QObject::eventFilter(watched, event);
        for (const QChar character : key->text()) {
            if (NumericEntry::EvaluateNumericKey(character.unicode()) == 0)
                return true;
        }
    } else if (event->type() == QEvent::FocusIn) {
        // After the mouse press that gave the focus has placed the caret.
        if (auto *field = qobject_cast<QLineEdit *>(watched))
            QTimer::singleShot(0, field, &QLineEdit::selectAll);
    }
    return QObject::eventFilter(watched, event);
}

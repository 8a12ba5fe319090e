#include "HeadlessMessageBoxes.h"

#include "ErrorReport.h"

#include <QRegularExpression>

HeadlessMessageBoxes::HeadlessMessageBoxes(ErrorReport &errors, std::FILE *bell)
    : m_errors(errors)
    , m_bell(bell)
{}

QString HeadlessMessageBoxes::oneLine(const QString &text)
{
    static const QRegularExpression lineBreaks(QStringLiteral("[\\r\\n]+"));
    return QString(text).replace(lineBreaks, QStringLiteral(" / "));
}

void HeadlessMessageBoxes::critical(const QString &title, const QString &text)
{
    // A message is no failure of the program: it carries no error number.
    m_errors.Show(title, 0, oneLine(text), QString());
}

void HeadlessMessageBoxes::beep()
{
    if (!m_bell)
        return;
    std::fputc('\a', m_bell);
    std::fflush(m_bell);
}

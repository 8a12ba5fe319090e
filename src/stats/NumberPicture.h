#pragma once

#include <QLocale>
#include <QString>

// A format picture for numbers shown to the engineer ("0.0000", "0.0", "#,##0.00").
// "0" is a mandatory digit, "#" an optional one, the first "." separates the decimals and
// a "," between integer digits asks for digit grouping; the separators shown are the
// locale's. Text before the first and after the last digit placeholder is kept as it
// stands. An empty picture, or one without any digit placeholder, gives the general form:
// up to 15 significant digits with the locale's decimal separator and no grouping.
//
// Rounding is half away from zero on the shortest decimal text that reads back as the same
// double, so 2.675 shows as "2.68" in "0.00", as a person reading 2.675 expects, and not
// "2.67" from the binary value just below it. A value that rounds to zero never shows a
// minus sign.
class NumberPicture
{
public:
    explicit NumberPicture(const QString &picture = QString());

    QString format(double value, const QLocale &locale = QLocale()) const;

    const QString &picture() const { return m_picture; }
    bool isGeneral() const { return m_general; }
    int decimalsShown() const { return m_mandatoryDecimals + m_optionalDecimals; }

private:
    QString formatGeneral(double value, const QLocale &locale) const;

    QString m_picture;
    QString m_prefix;
    QString m_suffix;
    bool m_general = true;
    bool m_grouping = false;
    int m_integerDigits = 0;
    int m_mandatoryDecimals = 0;
    int m_optionalDecimals = 0;
};

// One value formatted with a picture; for callers that format once.
QString formatNumber(double value, const QString &picture, const QLocale &locale = QLocale());

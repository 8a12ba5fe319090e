#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>

// Dates and numbers in the user's regional settings, in the "general" forms that a data
// log or an event log line shows: the short date with a four-digit year and the time
// with seconds, in local time; numbers with up to 15 significant digits, the regional
// decimal separator, no digit grouping and the ASCII minus sign (some locales have a
// Unicode minus, which spreadsheets do not read as a number). The formats are worked
// out once, at construction.
class RegionalFormat
{
public:
    explicit RegionalFormat(const QLocale &locale = QLocale());

    QString dateTime(const QDateTime &value) const;
    QString number(double value) const;
    // Appends number(value) to out without a temporary string.
    void appendNumber(QString &out, double value) const;

    const QLocale &locale() const { return m_locale; }

private:
    QLocale m_locale;
    QString m_dateTimeFormat;
    QString m_decimalPoint;
};

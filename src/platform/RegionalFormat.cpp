#include "RegionalFormat.h"

#include <QRegularExpression>

RegionalFormat::RegionalFormat(const QLocale &locale)
    : m_locale(locale)
{
    m_locale.setNumberOptions(QLocale::OmitGroupSeparator);

    QString date = m_locale.dateFormat(QLocale::ShortFormat);
    if (!date.contains(QLatin1String("yyyy")))
        date.replace(QLatin1String("yy"), QLatin1String("yyyy"));
    // The long time format ends in the time zone ("t"), which a log line leaves out.
    QString time = m_locale.timeFormat(QLocale::LongFormat);
    time.remove(QRegularExpression(QStringLiteral("\\s*\\bt+\\b\\s*")));
    m_dateTimeFormat = date + u' ' + time.trimmed();
}

QString RegionalFormat::dateTime(const QDateTime &value) const
{
    return m_locale.toString(value, m_dateTimeFormat);
}

QString RegionalFormat::number(double value) const
{
    return m_locale.toString(value, 'g', 15);
}

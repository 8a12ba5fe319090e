#include "RegionalFormat.h"

#include <QRegularExpression>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

// Below this magnitude the shortest round trip of std::to_chars and the locale's
// general form agree digit for digit; larger values go the locale's way.
constexpr double kFastMagnitude = 1e13;

} // namespace

RegionalFormat::RegionalFormat(const QLocale &locale)
    : m_locale(locale)
    , m_decimalPoint(locale.decimalPoint())
{
    m_locale.setNumberOptions(QLocale::OmitGroupSeparator);

    QString date = m_locale.dateFormat(QLocale::ShortFormat);
    if (!date.contains(QLatin1String("yyyy")))
        date.replace(QLatin1String("yy"), QLatin1String("yyyy"));
    // The long time format ends in the time zone ("t"), which a log line leaves out.
    QString time = m_locale.timeFormat(QLocale::LongFormat);
    static const QRegularExpression zone(QStringLiteral("\\s*\\bt+\\b\\s*"));
    time.remove(zone);
    m_dateTimeFormat = date + u' ' + time.trimmed();
}

QString RegionalFormat::dateTime(const QDateTime &value) const
{
    const QDateTime local = value.timeSpec() == Qt::LocalTime ? value : value.toLocalTime();
    return m_locale.toString(local, m_dateTimeFormat);
}

QString RegionalFormat::number(double value) const
{
    QString text;
    appendNumber(text, value);
    return text;
}

void RegionalFormat::appendNumber(QString &out, double value) const
{
    if (value == 0) {
        out += u'0';
        return;
    }
    if (!(std::fabs(value) < kFastMagnitude)) {
        out += m_locale.toString(value, 'g', 15).replace(m_locale.negativeSign(), QString(u'-'));
        return;
    }
    char digits[32];
    const std::to_chars_result end =
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, 15);
    const char *point = std::find(digits, end.ptr, '.');
    out += QLatin1StringView(digits, point);
    if (point != end.ptr) {
        out += m_decimalPoint;
        out += QLatin1StringView(point + 1, end.ptr);
    }
}

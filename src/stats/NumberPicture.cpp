#include "NumberPicture.h"

#include <charconv>
#include <cmath>
#include <string>

namespace {

bool isDigitPlaceholder(QChar c)
{
    return c == u'0' || c == u'#';
}

// Adds one unit in the last place to a string of decimal digits; "99" becomes "100".
void incrementDigits(std::string &digits)
{
    for (auto it = digits.rbegin(); it != digits.rend(); ++it) {
        if (*it != '9') {
            ++*it;
            return;
        }
        *it = '0';
    }
    digits.insert(digits.begin(), '1');
}

QString groupDigits(const QString &digits, const QString &separator)
{
    QString grouped;
    grouped.reserve(digits.size() + digits.size() / 3 * separator.size());
    for (qsizetype i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0)
            grouped += separator;
        grouped += digits[i];
    }
    return grouped;
}

// Locales with their own digit shapes get them; most use the ASCII digits unchanged.
void localiseDigits(QString &text, const QLocale &locale)
{
    const QString zero = locale.zeroDigit();
    if (zero == QLatin1String("0"))
        return;
    const QList<uint> zeroCode = zero.toUcs4();
    if (zeroCode.size() != 1)
        return;
    QString mapped;
    mapped.reserve(text.size() * 2);
    for (const QChar c : std::as_const(text)) {
        if (c >= u'0' && c <= u'9') {
            const char32_t code = char32_t(zeroCode.first() + uint(c.unicode() - u'0'));
            mapped += QString::fromUcs4(&code, 1);
        } else {
            mapped += c;
        }
    }
    text = mapped;
}

} // namespace

NumberPicture::NumberPicture(const QString &picture)
    : m_picture(picture)
{
    qsizetype first = -1;
    qsizetype last = -1;
    for (qsizetype i = 0; i < picture.size(); ++i) {
        const QChar c = picture[i];
        if (first < 0 && (isDigitPlaceholder(c) || c == u'.'))
            first = i;
        if (isDigitPlaceholder(c))
            last = i;
    }
    if (last < 0)
        return;

    m_general = false;
    m_prefix = picture.first(first);
    m_suffix = picture.sliced(last + 1);
    const QStringView section = QStringView(picture).sliced(first, last - first + 1);
    const qsizetype dot = section.indexOf(u'.');
    const QStringView integerPart = dot < 0 ? section : section.first(dot);
    const QStringView decimalPart = dot < 0 ? QStringView() : section.sliced(dot + 1);

    m_integerDigits = int(integerPart.count(u'0'));
    m_grouping = integerPart.contains(u',');
    int placeholders = 0;
    for (const QChar c : decimalPart) {
        if (!isDigitPlaceholder(c))
            continue;
        ++placeholders;
        if (c == u'0')
            m_mandatoryDecimals = placeholders;
    }
    m_optionalDecimals = placeholders - m_mandatoryDecimals;
}

QString NumberPicture::format(double value, const QLocale &locale) const
{
    if (m_general || !std::isfinite(value))
        return formatGeneral(value, locale);

    // The shortest fixed-point text that reads back as the same double.
    char buffer[400];
    const auto written =
        std::to_chars(buffer, buffer + sizeof buffer, std::fabs(value), std::chars_format::fixed);
    if (written.ec != std::errc())
        return formatGeneral(value, locale);
    const std::string text(buffer, written.ptr);
    const std::size_t point = text.find('.');
    std::string integerDigits = text.substr(0, point);
    std::string decimalDigits = point == std::string::npos ? std::string() : text.substr(point + 1);

    const std::size_t shown = std::size_t(decimalsShown());
    if (decimalDigits.size() > shown) {
        const bool roundUp = decimalDigits[shown] >= '5';
        decimalDigits.resize(shown);
        if (roundUp) {
            std::string all = integerDigits + decimalDigits;
            incrementDigits(all);
            integerDigits = all.substr(0, all.size() - shown);
            decimalDigits = all.substr(all.size() - shown);
        }
    }
    decimalDigits.resize(std::max(decimalDigits.size(), std::size_t(m_mandatoryDecimals)), '0');
    while (decimalDigits.size() > std::size_t(m_mandatoryDecimals) && decimalDigits.back() == '0')
        decimalDigits.pop_back();

    const std::size_t significant = integerDigits.find_first_not_of('0');
    integerDigits.erase(0, significant == std::string::npos ? integerDigits.size() : significant);
    if (integerDigits.size() < std::size_t(m_integerDigits))
        integerDigits.insert(0, std::size_t(m_integerDigits) - integerDigits.size(), '0');

    const bool isZero = integerDigits.find_first_not_of('0') == std::string::npos &&
                        decimalDigits.find_first_not_of('0') == std::string::npos;

    QString digits = QString::fromLatin1(integerDigits);
    if (m_grouping)
        digits = groupDigits(digits, locale.groupSeparator());
    if (!decimalDigits.empty())
        digits += locale.decimalPoint() + QString::fromLatin1(decimalDigits);
    localiseDigits(digits, locale);

    QString result;
    if (value < 0 && !isZero)
        result += locale.negativeSign();
    return result + m_prefix + digits + m_suffix;
}

QString NumberPicture::formatGeneral(double value, const QLocale &locale) const
{
    QLocale general(locale);
    general.setNumberOptions(QLocale::OmitGroupSeparator);
    // Negative zero reads as zero.
    return general.toString(value == 0 ? 0.0 : value, 'g', 15);
}

QString formatNumber(double value, const QString &picture, const QLocale &locale)
{
    return NumberPicture(picture).format(value, locale);
}

#include "XMLSupport.h"

namespace XMLSupport {

QDomNode SelectXMLNode(const QDomNode &node, const QString &path)
{
    QDomNode current = node;
    for (const QString &name : path.split(u'/', Qt::SkipEmptyParts)) {
        if (current.isNull())
            return {};
        current = current.firstChildElement(name);
    }
    return current;
}

QString booleanText(bool value)
{
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

bool textToBoolean(const QString &text, bool fallback)
{
    const QString trimmed = text.trimmed();
    if (trimmed.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
        return true;
    if (trimmed.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0)
        return false;
    bool isNumber = false;
    const double number = trimmed.toDouble(&isNumber);
    return isNumber ? number != 0 : fallback;
}

void SetXMLAttribute(QDomElement element, const QString &name, const QVariant &value)
{
    if (element.isNull())
        return;
    if (value.typeId() == QMetaType::Bool)
        element.setAttribute(name, booleanText(value.toBool()));
    else
        element.setAttribute(name, value.toString());
}

QString GetXMLAttribute(const QDomElement &element, const QString &name,
                        const QVariant &defaultValue)
{
    if (element.isNull())
        return QString();
    if (!element.hasAttribute(name)) {
        return defaultValue.typeId() == QMetaType::Bool ? booleanText(defaultValue.toBool())
                                                        : defaultValue.toString();
    }
    return element.attribute(name);
}

} // namespace XMLSupport

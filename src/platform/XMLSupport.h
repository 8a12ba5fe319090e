#pragma once

#include <QDomElement>
#include <QDomNode>
#include <QString>
#include <QVariant>

// The small attribute helpers that the configuration elements are read and written
// with. They never fail: errors inside them are swallowed.
namespace XMLSupport {

// The first element that a path of element names ("Sampling/Part") selects below
// node; a null node when there is none.
QDomNode SelectXMLNode(const QDomNode &node, const QString &path);

// Sets the attribute to the value's text (booleans as True and False).
void SetXMLAttribute(QDomElement element, const QString &name, const QVariant &value);

// The attribute's value, or the default's text when the attribute is absent. For a
// null element the result is the empty text, not the default.
QString GetXMLAttribute(const QDomElement &element, const QString &name,
                        const QVariant &defaultValue);

// A boolean attribute text: "True"/"False" in any case, or a number (0 false).
bool textToBoolean(const QString &text, bool fallback);
QString booleanText(bool value);

} // namespace XMLSupport

#include "XmlText.h"

#include <QDomNamedNodeMap>
#include <QHash>
#include <QStringList>

#include <algorithm>

namespace {

QString escaped(const QString &text, bool inAttribute)
{
    QString result;
    result.reserve(text.size());
    for (const QChar c : text) {
        switch (c.unicode()) {
        case '&':
            result += QLatin1String("&amp;");
            break;
        case '<':
            result += QLatin1String("&lt;");
            break;
        case '>':
            result += QLatin1String("&gt;");
            break;
        case '"':
            result += inAttribute ? QLatin1String("&quot;") : QLatin1String("\"");
            break;
        // Line breaks and tabs inside an attribute would be turned into blanks by the
        // next reader; written as character references they survive.
        case '\n':
            result += inAttribute ? QLatin1String("&#xa;") : QLatin1String("\n");
            break;
        case '\r':
            result += QLatin1String("&#xd;");
            break;
        case '\t':
            result += inAttribute ? QLatin1String("&#x9;") : QLatin1String("\t");
            break;
        default:
            result += c;
        }
    }
    return result;
}

// The order in which the configuration's elements name their attributes: the order in
// which their owners set them. Attributes not listed follow, by name.
QStringList attributeOrder(const QString &elementName)
{
    static const QHash<QString, QStringList> kOrder = {
        {QStringLiteral("Equipment"), {QStringLiteral("Name"), QStringLiteral("Settings")}},
        {QStringLiteral("DataLogging"), {QStringLiteral("Enable"), QStringLiteral("File")}},
        {QStringLiteral("Sampling"),
         {QStringLiteral("Enabled"), QStringLiteral("SamplingPeriod"),
          QStringLiteral("CollectionType"), QStringLiteral("SubgroupSize"),
          QStringLiteral("EnableAlarmLogging"), QStringLiteral("LogAlarms")}},
        {QStringLiteral("Database"), {QStringLiteral("DSN")}},
        {QStringLiteral("Part"), {QStringLiteral("Name"), QStringLiteral("Reselect")}},
        {QStringLiteral("Process"), {QStringLiteral("Name")}},
        {QStringLiteral("List"), {QStringLiteral("Index"), QStringLiteral("ItemData")}},
    };
    return kOrder.value(elementName);
}

QStringList orderedAttributeNames(const QDomElement &element)
{
    const QDomNamedNodeMap attributes = element.attributes();
    QStringList names;
    for (int i = 0; i < attributes.count(); ++i)
        names.append(attributes.item(i).nodeName());
    std::sort(names.begin(), names.end());
    const QStringList order = attributeOrder(element.tagName());
    const auto rank = [&order](const QString &name) {
        const qsizetype at = order.indexOf(name);
        return at < 0 ? order.size() : at;
    };
    std::stable_sort(names.begin(), names.end(),
                     [&](const QString &a, const QString &b) { return rank(a) < rank(b); });
    return names;
}

void append(QString &out, const QDomNode &node)
{
    switch (node.nodeType()) {
    case QDomNode::ElementNode: {
        const QDomElement element = node.toElement();
        out += u'<' + element.tagName();
        for (const QString &name : orderedAttributeNames(element))
            out +=
                u' ' + name + QLatin1String("=\"") + escaped(element.attribute(name), true) + u'"';
        if (!element.hasChildNodes()) {
            out += QLatin1String("/>");
            return;
        }
        out += u'>';
        for (QDomNode child = element.firstChild(); !child.isNull(); child = child.nextSibling())
            append(out, child);
        out += QLatin1String("</") + element.tagName() + u'>';
        return;
    }
    case QDomNode::TextNode:
        out += escaped(node.nodeValue(), false);
        return;
    case QDomNode::CDATASectionNode:
        out += QLatin1String("<![CDATA[") + node.nodeValue() + QLatin1String("]]>");
        return;
    case QDomNode::CommentNode:
        out += QLatin1String("<!--") + node.nodeValue() + QLatin1String("-->");
        return;
    case QDomNode::DocumentNode:
    case QDomNode::DocumentFragmentNode:
        for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling())
            append(out, child);
        return;
    default:
        // Declarations and processing instructions have no place in the file.
        return;
    }
}

} // namespace

QString xmlText(const QDomNode &node)
{
    QString out;
    append(out, node);
    return out;
}

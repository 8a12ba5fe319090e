#include "DroppedContent.h"

#include "platform/EventLog.h"

#include <QDomDocument>
#include <QDomElement>
#include <QDomNamedNodeMap>
#include <QRegularExpression>
#include <QSet>

namespace {

void collect(const QDomElement &element, const QString &parent, QSet<QString> &paths)
{
    const QString path = parent.isEmpty() ? element.tagName() : parent + u'/' + element.tagName();
    paths.insert(path);
    const QDomNamedNodeMap attributes = element.attributes();
    for (int i = 0; i < attributes.count(); ++i)
        paths.insert(path + u'@' + attributes.item(i).nodeName());
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement())
        collect(child, path, paths);
}

} // namespace

QStringList droppedContent(const QString &before, const QString &after)
{
    if (before.trimmed().isEmpty())
        return {};
    QDomDocument old;
    if (!old.setContent(before))
        return {QStringLiteral("(the whole file: it is not well-formed XML)")};
    QSet<QString> kept;
    QDomDocument replacement;
    if (replacement.setContent(after))
        collect(replacement.documentElement(), {}, kept);
    QSet<QString> held;
    collect(old.documentElement(), {}, held);
    QStringList dropped = (held - kept).values();
    dropped.sort();
    return dropped;
}

void logUnreadKept(EventLog &eventLog, const QString &copyPath, const QStringList &dropped)
{
    eventLog.WriteEventLog(QStringLiteral("Main"), QStringLiteral("Configurations Unread"), 0,
                           QStringLiteral("The configurations file held content this program "
                                          "does not read; the original was kept: ") +
                               dropped.join(QStringLiteral(", ")),
                           copyPath);
}

QString withoutAddressPasswords(const QString &text)
{
    static const QRegularExpression password(QStringLiteral("(://[^:/@\"'\\s]+):[^@/\"'\\s]*@"));
    return QString(text).replace(password, QStringLiteral("\\1@"));
}

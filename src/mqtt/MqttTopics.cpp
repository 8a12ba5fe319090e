#include "MqttTopics.h"

namespace MqttTopics {

QString topicSafeName(const QString &configurationName)
{
    QString safe;
    safe.reserve(configurationName.size());
    for (const QChar c : configurationName) {
        switch (c.unicode()) {
        case u'%':
            safe += u"%25";
            break;
        case u'/':
            safe += u"%2F";
            break;
        case u'+':
            safe += u"%2B";
            break;
        case u'#':
            safe += u"%23";
            break;
        default:
            safe += c;
        }
    }
    return safe;
}

QString status(const QString &root)
{
    return root + QStringLiteral("/status");
}

QString configuration(const QString &root, const QString &configurationName, QStringView leaf)
{
    return root + u'/' + topicSafeName(configurationName) + u'/' + leaf.toString();
}

} // namespace MqttTopics

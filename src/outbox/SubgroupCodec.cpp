#include "SubgroupCodec.h"

#include "platform/ProgramError.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using qlaDatabase6::Subgroup;
using qlaDatabase6::SubgroupHeader;

namespace {

constexpr auto kTimeFormat = Qt::ISODateWithMs;

} // namespace

namespace SubgroupCodec {

QByteArray encode(const Subgroup &subgroup)
{
    const SubgroupHeader &header = subgroup.header();
    QJsonArray items;
    for (const qlaDatabase6::TestItem &item : subgroup.testItems()) {
        QJsonArray values;
        for (const qlaDatabase6::SubgroupValue &value : item.values)
            values.append(
                QJsonObject{{"n", value.sampleNumber}, {"v", value.value}, {"t", value.text}});
        items.append(QJsonObject{{"name", item.name}, {"kind", item.kind}, {"values", values}});
    }
    const QJsonObject object{
        {"key", header.key},
        {"flag", header.flag},
        {"valueCount", header.valueCount},
        {"time", header.dateTime.toString(kTimeFormat)},
        {"partGroup", header.partGroup},
        {"part", header.part},
        {"processGroup", header.processGroup},
        {"process", header.process},
        {"sourceTag", header.sourceTag},
        {"items", items},
    };
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

Subgroup decode(const QByteArray &text)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    const QJsonObject object = document.object();
    SubgroupHeader header;
    header.key = object.value("key").toString();
    header.flag = object.value("flag").toBool(true);
    header.valueCount = object.value("valueCount").toInt();
    header.dateTime = QDateTime::fromString(object.value("time").toString(), kTimeFormat);
    header.partGroup = object.value("partGroup").toString();
    header.part = object.value("part").toString();
    header.processGroup = object.value("processGroup").toString();
    header.process = object.value("process").toString();
    header.sourceTag = object.value("sourceTag").toString();
    if (error.error != QJsonParseError::NoError || !header.dateTime.isValid())
        throw ProgramError::raised(QStringLiteral("An outbox entry is not a subgroup"),
                                   QStringLiteral("SubgroupCodec.decode"));
    Subgroup subgroup;
    subgroup.setHeader(header);
    for (const QJsonValue &itemValue : object.value("items").toArray()) {
        const QJsonObject item = itemValue.toObject();
        subgroup.AddTestItem(item.value("name").toString(), item.value("kind").toInt());
        for (const QJsonValue &entry : item.value("values").toArray()) {
            const QJsonObject value = entry.toObject();
            subgroup.addValue(value.value("n").toInt(), value.value("v").toDouble(),
                              value.value("t").toString());
        }
    }
    return subgroup;
}

} // namespace SubgroupCodec

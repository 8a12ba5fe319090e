#include "ConfigurationElement.h"

#include "SamplingSeam.h"

#include "platform/XMLSupport.h"

#include <algorithm>

using namespace XMLSupport;

namespace ConfigurationElement {

QDomElement write(QDomDocument &document, const MonitorConfiguration &configuration,
                  SamplingSeam &sampling)
{
    QDomElement root = document.createElement(QStringLiteral("Configuration"));

    QDomElement equipment = document.createElement(QStringLiteral("Equipment"));
    root.appendChild(equipment);
    SetXMLAttribute(equipment, QStringLiteral("Name"), configuration.name);
    SetXMLAttribute(equipment, QStringLiteral("Settings"), configuration.address);

    QDomElement logging = document.createElement(QStringLiteral("DataLogging"));
    root.appendChild(logging);
    SetXMLAttribute(logging, QStringLiteral("Enable"),
                    configuration.dataLoggingEnabled ? QStringLiteral("1") : QStringLiteral("0"));
    SetXMLAttribute(logging, QStringLiteral("File"), configuration.dataLogFile);

    const QDomElement samplingElement = sampling.GetXMLNode(document);
    if (!samplingElement.isNull())
        root.appendChild(samplingElement);

    for (int row = 0; row < MonitorConfiguration::kRowCount; ++row) {
        QDomElement list = document.createElement(QStringLiteral("List"));
        root.appendChild(list);
        SetXMLAttribute(list, QStringLiteral("Index"), row);
        SetXMLAttribute(list, QStringLiteral("ItemData"), configuration.rows[row]);
    }
    if (configuration.alarmListHeight > 0) {
        QDomElement display = document.createElement(QStringLiteral("Display"));
        root.appendChild(display);
        SetXMLAttribute(display, QStringLiteral("AlarmListHeight"), configuration.alarmListHeight);
    }
    return root;
}

namespace {

QString readAddress(const QDomElement &equipment)
{
    if (equipment.hasAttribute(QStringLiteral("Settings")))
        return equipment.attribute(QStringLiteral("Settings"));
    // The older form named the host and the port of a TCP link separately.
    return QStringLiteral("IP:") +
           GetXMLAttribute(equipment, QStringLiteral("Address"), QString()) + u':' +
           GetXMLAttribute(equipment, QStringLiteral("Port"), 1000);
}

int readInteger(const QDomElement &element, const QString &name, int defaultValue)
{
    bool ok = false;
    const int value = GetXMLAttribute(element, name, defaultValue).trimmed().toInt(&ok);
    return ok ? value : defaultValue;
}

} // namespace

bool read(const QString &xml, MonitorConfiguration &configuration, SamplingSeam &sampling,
          const std::function<bool(int)> &isCharacteristic)
{
    QDomDocument document;
    if (xml.isEmpty() || !document.setContent(xml))
        return false;
    const QDomElement root = SelectXMLNode(document, QStringLiteral("Configuration")).toElement();
    if (root.isNull())
        return false;

    const QDomElement equipment = root.firstChildElement(QStringLiteral("Equipment"));
    if (!equipment.isNull()) {
        configuration.name = GetXMLAttribute(equipment, QStringLiteral("Name"), QString());
        configuration.address = readAddress(equipment);
    }

    const QDomElement logging = root.firstChildElement(QStringLiteral("DataLogging"));
    if (!logging.isNull()) {
        configuration.dataLoggingEnabled = textToBoolean(
            GetXMLAttribute(logging, QStringLiteral("Enable"), configuration.dataLoggingEnabled),
            configuration.dataLoggingEnabled);
        configuration.dataLogFile =
            GetXMLAttribute(logging, QStringLiteral("File"), configuration.dataLogFile);
    }

    sampling.SetXMLNode(root);

    for (QDomElement list = root.firstChildElement(QStringLiteral("List")); !list.isNull();
         list = list.nextSiblingElement(QStringLiteral("List"))) {
        const int row = readInteger(list, QStringLiteral("Index"), 99);
        if (row < 0 || row >= MonitorConfiguration::kRowCount)
            continue;
        const int characteristic = readInteger(list, QStringLiteral("ItemData"), 0);
        configuration.rows[row] = isCharacteristic(characteristic) ? characteristic : 0;
    }
    const QDomElement display = root.firstChildElement(QStringLiteral("Display"));
    configuration.alarmListHeight =
        std::max(0, readInteger(display, QStringLiteral("AlarmListHeight"), 0));
    return true;
}

} // namespace ConfigurationElement

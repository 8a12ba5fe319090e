#pragma once

#include <QDomDocument>
#include <QDomElement>
#include <QString>

#include <array>
#include <functional>

class SamplingSeam;

// What a monitor keeps of its configuration: the equipment's name and link address,
// the data logging switch and file, and the characteristic each display row shows.
struct MonitorConfiguration
{
    static constexpr int kRowCount = 8;

    QString name;
    // "IP:" host ":" port, or "COM:" port "," baud "," parity "," data bits ","
    // stop bits "," flow control.
    QString address;
    bool dataLoggingEnabled = false;
    QString dataLogFile;
    // Characteristic number per display row, 0 when the row shows nothing.
    std::array<int, kRowCount> rows{};
    // The height the engineer gave the alarms list, in pixels; 0 for the face's own.
    int alarmListHeight = 0;
};

// The monitor's "Configuration" element of the configurations file.
namespace ConfigurationElement {

// Builds the element in document: Equipment (Name, Settings), DataLogging (Enable
// "1"/"0", File), the sampling object's "Sampling" element when it writes one, one
// List (Index, ItemData) per display row in row order, and Display (AlarmListHeight) once
// the alarms list has been given a height.
QDomElement write(QDomDocument &document, const MonitorConfiguration &configuration,
                  SamplingSeam &sampling);

// Applies the "Configuration" element of xml to configuration and sampling. Also reads
// the older Equipment form with Address and Port instead of Settings. A row's ItemData
// that isCharacteristic does not accept selects nothing in that row; List elements
// whose Index is not a row are ignored. Returns false, changing nothing, when the text
// is not XML or has no "Configuration" element.
bool read(const QString &xml, MonitorConfiguration &configuration, SamplingSeam &sampling,
          const std::function<bool(int)> &isCharacteristic);

} // namespace ConfigurationElement

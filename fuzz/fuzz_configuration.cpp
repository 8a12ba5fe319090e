// Feeds arbitrary text to the reader of a configurations file's "Configuration"
// element. Whatever a hand-edited or damaged file holds, the reader must not crash,
// must leave the configuration untouched when it refuses the text, and what it accepted
// must come back unchanged when written and read again.

#include "monitor/ConfigurationElement.h"
#include "monitor/SamplingSeam.h"

#include <QDomDocument>
#include <QTextStream>

#include <cstddef>
#include <cstdint>

namespace {

void check(bool condition)
{
    if (!condition)
        __builtin_trap();
}

bool sameConfiguration(const MonitorConfiguration &a, const MonitorConfiguration &b)
{
    return a.name == b.name && a.address == b.address &&
           a.dataLoggingEnabled == b.dataLoggingEnabled && a.dataLogFile == b.dataLogFile &&
           a.rows == b.rows;
}

bool isCharacteristic(int number)
{
    return number >= 1 && number <= 8;
}

QString elementText(const MonitorConfiguration &configuration)
{
    NullSampling sampling;
    QDomDocument document;
    document.appendChild(ConfigurationElement::write(document, configuration, sampling));
    return document.toString(-1);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString xml = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    NullSampling sampling;
    MonitorConfiguration before;
    before.name = QStringLiteral("untouched");
    before.rows.fill(3);
    MonitorConfiguration configuration = before;
    if (!ConfigurationElement::read(xml, configuration, sampling, isCharacteristic)) {
        check(sameConfiguration(configuration, before));
        return 0;
    }
    for (const int row : configuration.rows)
        check(row == 0 || isCharacteristic(row));

    MonitorConfiguration again;
    check(
        ConfigurationElement::read(elementText(configuration), again, sampling, isCharacteristic));
    check(sameConfiguration(again, configuration));
    return 0;
}

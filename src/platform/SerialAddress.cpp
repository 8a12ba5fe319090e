#include "SerialAddress.h"

namespace SerialAddress {

namespace {

constexpr QStringView kPrefix = u"COM:";
constexpr int kFieldCount = 6;

std::optional<SerialSettings> refuse(QString *errorText, const QString &reason)
{
    if (errorText)
        *errorText = reason;
    return std::nullopt;
}

} // namespace

bool isSerial(QStringView address)
{
    return address.startsWith(kPrefix);
}

std::optional<SerialSettings> parse(QStringView address, QString *errorText)
{
    if (!isSerial(address))
        return refuse(errorText, QStringLiteral("Not a serial address: %1").arg(address));
    const QList<QStringView> fields = address.sliced(kPrefix.size()).split(u',');
    if (fields.size() != kFieldCount)
        return refuse(errorText,
                      QStringLiteral("A serial address has %1 fields behind \"COM:\", not %2")
                          .arg(kFieldCount)
                          .arg(fields.size()));

    SerialSettings settings;
    settings.port = fields.at(0).trimmed().toString();
    if (settings.port.isEmpty())
        return refuse(errorText, QStringLiteral("No serial port given"));

    bool ok = false;
    settings.baudRate = fields.at(1).trimmed().toInt(&ok);
    if (!ok || settings.baudRate <= 0)
        return refuse(errorText, QStringLiteral("Invalid baud rate: %1").arg(fields.at(1)));

    const QStringView parity = fields.at(2).trimmed();
    if (parity.size() != 1 || !QStringView(u"NOEMS").contains(parity.at(0)))
        return refuse(errorText, QStringLiteral("Invalid parity: %1").arg(parity));
    settings.parity = parity.at(0);

    settings.dataBits = fields.at(3).trimmed().toInt(&ok);
    if (!ok || settings.dataBits < 4 || settings.dataBits > 8)
        return refuse(errorText, QStringLiteral("Invalid data bits: %1").arg(fields.at(3)));

    const QStringView stopBits = fields.at(4).trimmed();
    if (stopBits != u"1" && stopBits != u"1.5" && stopBits != u"2")
        return refuse(errorText, QStringLiteral("Invalid stop bits: %1").arg(stopBits));
    settings.stopBits = stopBits.toString();

    settings.handshaking = fields.at(5).trimmed().toInt(&ok);
    if (!ok || settings.handshaking < 0 || settings.handshaking > 3)
        return refuse(errorText, QStringLiteral("Invalid handshaking: %1").arg(fields.at(5)));
    return settings;
}

QString format(const SerialSettings &settings)
{
    return QStringLiteral("COM:%1,%2,%3,%4,%5,%6")
        .arg(settings.port)
        .arg(settings.baudRate)
        .arg(settings.parity)
        .arg(settings.dataBits)
        .arg(settings.stopBits)
        .arg(settings.handshaking);
}

} // namespace SerialAddress

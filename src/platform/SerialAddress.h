#pragma once

#include "SerialPort.h"

#include <optional>

// The serial form of a link address, as the configuration keeps it and the
// communications setup builds it:
//
//   COM:port,baud,parity,data bits,stop bits,handshaking      e.g. COM:3,9600,E,8,1,2
//
// The port is a number (or, beyond the classic form, a device path); the parity one of
// N O E M S; data bits 4 to 8; stop bits 1, 1.5 or 2; handshaking 0 none, 1 XON/XOFF,
// 2 CTS/RTS, 3 both. Whether the port can actually do a setting is the port's business
// (QtSerialPort::open); this only reads and writes the text.
namespace SerialAddress {

// True when the address is a serial one: its first four characters are "COM:".
bool isSerial(QStringView address);

// The settings of a serial address; nothing, with the reason, when it is not one or a
// field is missing or malformed.
std::optional<SerialSettings> parse(QStringView address, QString *errorText = nullptr);

// The address text of the settings.
QString format(const SerialSettings &settings);

} // namespace SerialAddress

#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

// The line settings of a serial link, as the "COM:" address text carries them.
struct SerialSettings
{
    // A number n: COM n on Windows, the n-th serial device the system lists elsewhere;
    // or a device path (/dev/ttyUSB0, a pseudo-terminal) taken as it stands.
    QString port;
    qint32 baudRate = 9600;
    QChar parity = u'N';                    // N, O, E, M or S
    int dataBits = 8;                       // 4 to 8
    QString stopBits = QStringLiteral("1"); // "1", "1.5" or "2"
    int handshaking = 0;                    // 0 none, 1 XON/XOFF, 2 CTS/RTS, 3 both
};

// A serial port as the monitor's link and the test console see it: binary input, an
// event on every arrival, a read of all waiting input.
class SerialPort : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    // Sets the port up and opens it; false with the reason in errorText when the port
    // does not exist, is busy or refuses a setting.
    virtual bool open(const SerialSettings &settings, QString *errorText) = 0;
    virtual void close() = 0;
    virtual bool isOpen() const = 0;
    virtual qint64 bytesWaiting() const = 0;
    virtual QByteArray readAll() = 0;

signals:
    void received();
    // The device of an open port went away (a USB adapter pulled out); the port is closed.
    void lost();
};

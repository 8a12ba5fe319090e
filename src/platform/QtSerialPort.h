#pragma once

#include "SerialPort.h"

#include <QSerialPort>

#include <optional>

// The serial link to a power supply over a QSerialPort: binary input exactly as it
// arrives, received() on every arrival.
//
// The port field names the port: on Windows a number n is COMn; elsewhere a number n is
// the n-th serial device the system lists (in order of device path, counting from 1),
// since there are no port numbers there; a device path (anything with a '/') is taken as
// it stands, so /dev/ttyUSB0 and pseudo-terminals work; any other text is a device name
// such as ttyUSB0.
//
// A port whose device disappears or fails on reading (a USB adapter pulled out, the far
// end of a pseudo-terminal gone) is closed, so that it shows as closed instead of
// failing again on every pass of the event loop.
class QtSerialPort : public SerialPort
{
    Q_OBJECT

public:
    // The line settings of a QSerialPort that a SerialSettings asks for.
    struct Line
    {
        qint32 baudRate;
        QSerialPort::Parity parity;
        QSerialPort::DataBits dataBits;
        QSerialPort::StopBits stopBits;
        QSerialPort::FlowControl flowControl;
    };

    explicit QtSerialPort(QObject *parent = nullptr);
    ~QtSerialPort() override;

    bool open(const SerialSettings &settings, QString *errorText) override;
    void close() override;
    bool isOpen() const override;
    qint64 bytesWaiting() const override;
    QByteArray readAll() override;

    // The QSerialPort settings for the given ones; nothing, with the reason, for a
    // setting the port cannot do.
    static std::optional<Line> lineFor(const SerialSettings &settings, QString *errorText);

    // The device (system location or port name) that the port field names; empty, with
    // the reason, when there is none.
    static QString deviceFor(const QString &port, QString *errorText);

    // What the port list of the setup dialog offers: the numbers 1 to 9, then on Windows
    // the numbers of the system's COM ports above 9, elsewhere the paths of the serial
    // devices the system lists.
    static QStringList portChoices();

private:
    void onErrorOccurred(QSerialPort::SerialPortError error);

    QSerialPort m_port;
};

#pragma once

#include "Supply.h"

#include <QSerialPort>

// A power supply writing to a serial device, 9600 baud, 8 data bits, no parity, one stop
// bit, no flow control. A serial line has no connection: it welds from the start.
class SerialSupply : public Supply
{
    Q_OBJECT

public:
    SerialSupply(const QString &device, std::unique_ptr<WeldSource> source, int intervalMs,
                 std::optional<qint64> count, QObject *parent = nullptr);

    bool open(QString *errorText) override;
    QString startLine() const override;

protected:
    bool canSend() override;
    void send(const QByteArray &bytes) override;
    void drain() override;
    void closeNow() override;

private:
    void onBytesWritten();
    void onError(QSerialPort::SerialPortError error);

    QString m_device;
    QSerialPort m_port;
};

#include "SerialSupply.h"

SerialSupply::SerialSupply(const QString &device, std::unique_ptr<WeldSource> source,
                           int intervalMs, std::optional<qint64> count, QObject *parent)
    : Supply(std::move(source), intervalMs, count, parent)
    , m_device(device)
{
    connect(&m_port, &QSerialPort::bytesWritten, this, &SerialSupply::onBytesWritten);
    connect(&m_port, &QSerialPort::errorOccurred, this, &SerialSupply::onError,
            Qt::QueuedConnection);
}

bool SerialSupply::open(QString *errorText)
{
    m_port.setPortName(m_device);
    m_port.setBaudRate(QSerialPort::Baud9600);
    m_port.setDataBits(QSerialPort::Data8);
    m_port.setParity(QSerialPort::NoParity);
    m_port.setStopBits(QSerialPort::OneStop);
    m_port.setFlowControl(QSerialPort::NoFlowControl);
    if (m_port.open(QIODevice::WriteOnly))
        return true;
    *errorText = QStringLiteral("cannot open %1: %2").arg(m_device, m_port.errorString());
    return false;
}

QString SerialSupply::startLine() const
{
    return QStringLiteral("serial %1").arg(m_device);
}

bool SerialSupply::canSend()
{
    return m_port.isOpen() && m_port.bytesToWrite() < kBacklogBytes;
}

void SerialSupply::send(const QByteArray &bytes)
{
    m_port.write(bytes);
}

void SerialSupply::onBytesWritten()
{
    if (isEnding()) {
        if (m_port.bytesToWrite() == 0)
            drain();
        return;
    }
    if (canSend())
        resume();
}

void SerialSupply::drain()
{
    if (m_port.isOpen() && m_port.bytesToWrite() > 0)
        return; // onBytesWritten() comes back when the line has taken everything
    closeNow();
    markFinished();
}

void SerialSupply::onError(QSerialPort::SerialPortError)
{
    const QSerialPort::SerialPortError error = m_port.error();
    if (error == QSerialPort::ResourceError || error == QSerialPort::WriteError)
        fail(QStringLiteral("%1: %2").arg(m_device, m_port.errorString()));
}

void SerialSupply::closeNow()
{
    if (!m_port.isOpen())
        return;
    m_port.waitForBytesWritten(100);
    m_port.close();
}

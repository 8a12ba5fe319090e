#include "QtSerialPort.h"

#include <QSerialPortInfo>

#include <algorithm>

namespace {

// The port list always offers these numbers, present or not: a port may be plugged in
// after the dialog opens.
constexpr int kListedPortNumbers = 9;

void setReason(QString *errorText, const QString &reason)
{
    if (errorText)
        *errorText = reason;
}

#ifndef Q_OS_WIN
// Device paths in the order people count them: /dev/ttyS2 before /dev/ttyS10.
bool deviceOrder(const QString &a, const QString &b)
{
    const auto split = [](const QString &path) {
        qsizetype digits = path.size();
        while (digits > 0 && path.at(digits - 1).isDigit())
            --digits;
        const QStringView number = QStringView(path).sliced(digits);
        return std::pair(QStringView(path).first(digits),
                         number.isEmpty() ? -1LL : number.toLongLong());
    };
    const auto [prefixA, numberA] = split(a);
    const auto [prefixB, numberB] = split(b);
    if (prefixA != prefixB)
        return prefixA < prefixB;
    return numberA < numberB;
}
#endif

std::optional<QSerialPort::Parity> parityFor(QChar letter)
{
    switch (letter.toUpper().unicode()) {
    case u'N':
        return QSerialPort::NoParity;
    case u'O':
        return QSerialPort::OddParity;
    case u'E':
        return QSerialPort::EvenParity;
    case u'M':
        return QSerialPort::MarkParity;
    case u'S':
        return QSerialPort::SpaceParity;
    default:
        return std::nullopt;
    }
}

std::optional<QSerialPort::StopBits> stopBitsFor(const QString &text)
{
    if (text == u"1")
        return QSerialPort::OneStop;
    if (text == u"1.5")
        return QSerialPort::OneAndHalfStop;
    if (text == u"2")
        return QSerialPort::TwoStop;
    return std::nullopt;
}

std::optional<QSerialPort::FlowControl> flowControlFor(int handshaking)
{
    switch (handshaking) {
    case 0:
        return QSerialPort::NoFlowControl;
    case 1:
        return QSerialPort::SoftwareControl;
    case 2:
        return QSerialPort::HardwareControl;
    case 3:
        // CTS/RTS together with XON/XOFF: QSerialPort has no combined mode. Hardware
        // flow control is the one that actually holds the power supply back when the
        // receiver cannot keep up; XON/XOFF would also misread 0x11 and 0x13 bytes in
        // the binary weld records as flow commands.
        return QSerialPort::HardwareControl;
    default:
        return std::nullopt;
    }
}

} // namespace

QtSerialPort::QtSerialPort(QObject *parent)
    : SerialPort(parent)
{
    connect(&m_port, &QSerialPort::readyRead, this, &SerialPort::received);
    // Queued: the port is closed from outside the notification that reported the failure.
    connect(&m_port, &QSerialPort::errorOccurred, this, &QtSerialPort::onErrorOccurred,
            Qt::QueuedConnection);
}

QtSerialPort::~QtSerialPort()
{
    m_port.disconnect(this);
    m_port.close();
}

std::optional<QtSerialPort::Line> QtSerialPort::lineFor(const SerialSettings &settings,
                                                        QString *errorText)
{
    if (settings.baudRate <= 0) {
        setReason(errorText, QStringLiteral("Invalid baud rate %1").arg(settings.baudRate));
        return std::nullopt;
    }
    const std::optional<QSerialPort::Parity> parity = parityFor(settings.parity);
    if (!parity) {
        setReason(errorText,
                  QStringLiteral("Invalid parity '%1': use N, O, E, M or S").arg(settings.parity));
        return std::nullopt;
    }
    if (settings.dataBits == 4) {
        setReason(errorText,
                  QStringLiteral("4 data bits are not supported by this serial port driver"));
        return std::nullopt;
    }
    if (settings.dataBits < 5 || settings.dataBits > 8) {
        setReason(errorText, QStringLiteral("Invalid data bits %1").arg(settings.dataBits));
        return std::nullopt;
    }
    const std::optional<QSerialPort::StopBits> stopBits = stopBitsFor(settings.stopBits);
#ifndef Q_OS_WIN
    // Terminal devices outside Windows know one or two stop bits only; QSerialPort would
    // quietly run the line with one.
    if (stopBits == QSerialPort::OneAndHalfStop) {
        setReason(errorText,
                  QStringLiteral("1.5 stop bits are not supported by serial devices here"));
        return std::nullopt;
    }
#endif
    if (!stopBits) {
        setReason(
            errorText,
            QStringLiteral("Invalid stop bits \"%1\": use 1, 1.5 or 2").arg(settings.stopBits));
        return std::nullopt;
    }
    const std::optional<QSerialPort::FlowControl> flow = flowControlFor(settings.handshaking);
    if (!flow) {
        setReason(errorText,
                  QStringLiteral("Invalid handshaking %1: use 0 to 3").arg(settings.handshaking));
        return std::nullopt;
    }
    return Line{settings.baudRate, *parity, QSerialPort::DataBits(settings.dataBits), *stopBits,
                *flow};
}

QString QtSerialPort::deviceFor(const QString &port, QString *errorText)
{
    const QString text = port.trimmed();
    if (text.isEmpty()) {
        setReason(errorText, QStringLiteral("No serial port given"));
        return {};
    }
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (!isNumber)
        return text;
    if (number < 1) {
        setReason(errorText, QStringLiteral("Invalid serial port number %1").arg(number));
        return {};
    }
#ifdef Q_OS_WIN
    return QStringLiteral("COM%1").arg(number);
#else
    QStringList devices;
    const QList<QSerialPortInfo> ports = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo &info : ports)
        devices.append(info.systemLocation());
    std::sort(devices.begin(), devices.end(), deviceOrder);
    if (number > devices.size()) {
        setReason(errorText, QStringLiteral("No serial port number %1: the system lists %2")
                                 .arg(number)
                                 .arg(devices.size()));
        return {};
    }
    return devices.at(number - 1);
#endif
}

QStringList QtSerialPort::portChoices()
{
    QStringList choices;
    for (int number = 1; number <= kListedPortNumbers; ++number)
        choices.append(QString::number(number));
    const QList<QSerialPortInfo> ports = QSerialPortInfo::availablePorts();
#ifdef Q_OS_WIN
    QList<int> higher;
    for (const QSerialPortInfo &info : ports) {
        const QString name = info.portName();
        bool isNumber = false;
        const int number = name.startsWith(QLatin1String("COM"), Qt::CaseInsensitive)
                               ? name.mid(3).toInt(&isNumber)
                               : 0;
        if (isNumber && number > kListedPortNumbers && !higher.contains(number))
            higher.append(number);
    }
    std::sort(higher.begin(), higher.end());
    for (const int number : higher)
        choices.append(QString::number(number));
#else
    QStringList devices;
    for (const QSerialPortInfo &info : ports)
        devices.append(info.systemLocation());
    std::sort(devices.begin(), devices.end(), deviceOrder);
    choices.append(devices);
#endif
    return choices;
}

bool QtSerialPort::open(const SerialSettings &settings, QString *errorText)
{
    close();
    const std::optional<Line> line = lineFor(settings, errorText);
    if (!line)
        return false;
    const QString device = deviceFor(settings.port, errorText);
    if (device.isEmpty())
        return false;

    m_port.setPortName(device);
    m_port.setBaudRate(line->baudRate);
    m_port.setParity(line->parity);
    m_port.setDataBits(line->dataBits);
    m_port.setStopBits(line->stopBits);
    m_port.setFlowControl(line->flowControl);
    // The monitor only listens; the port opens read-only so no stray byte can ever reach
    // the power supply.
    if (!m_port.open(QIODevice::ReadOnly)) {
        setReason(errorText,
                  QStringLiteral("Cannot open %1: %2").arg(device, m_port.errorString()));
        m_port.clearError();
        return false;
    }
    return true;
}

void QtSerialPort::close()
{
    if (m_port.isOpen())
        m_port.close();
}

bool QtSerialPort::isOpen() const
{
    return m_port.isOpen();
}

qint64 QtSerialPort::bytesWaiting() const
{
    return m_port.bytesAvailable();
}

QByteArray QtSerialPort::readAll()
{
    return m_port.readAll();
}

void QtSerialPort::onErrorOccurred(QSerialPort::SerialPortError)
{
    // The error as it stands now, not as it was queued: a port reopened since then has
    // cleared it and must stay open.
    const QSerialPort::SerialPortError error = m_port.error();
    if ((error == QSerialPort::ResourceError || error == QSerialPort::ReadError) && isOpen()) {
        close();
        emit lost();
    }
}

#include "EquipmentLink.h"

#include "LinkRules.h"

#include "platform/Clock.h"
#include "platform/ErrorPassing.h"
#include "platform/SerialAddress.h"
#include "platform/SerialPort.h"
#include "platform/SocketPort.h"
#include "platform/qlxLanguage.h"

using namespace LinkRules;

namespace {

constexpr qint64 kSilentMinutes = 5;
constexpr qint64 kRetryMinutes = 1;

} // namespace

EquipmentLink::EquipmentLink(const Clock &clock, LinkHost &host, SocketMaker makeSocket,
                             SerialPortMaker makeSerialPort)
    : m_clock(clock)
    , m_host(host)
    , m_makeSocket(std::move(makeSocket))
    , m_makeSerialPort(std::move(makeSerialPort))
{}

EquipmentLink::~EquipmentLink()
{
    // The ports' events must not reach a monitor that is going away.
    if (m_socket)
        QObject::disconnect(m_socket.get(), nullptr, nullptr, nullptr);
    if (m_serialPort)
        QObject::disconnect(m_serialPort.get(), nullptr, nullptr, nullptr);
}

bool EquipmentLink::isSerial() const
{
    return SerialAddress::isSerial(m_address);
}

SocketPort &EquipmentLink::socket()
{
    if (!m_socket) {
        if (!m_makeSocket)
            throw ProgramError::raised(QStringLiteral("No TCP transport available"),
                                       QStringLiteral("CorvaneUsw.Winsock1"));
        m_socket = m_makeSocket();
        SocketPort *port = m_socket.get();
        QObject::connect(port, &SocketPort::connected, port, [this] { m_host.Winsock1_Connect(); });
        QObject::connect(port, &SocketPort::dataArrival, port,
                         [this](qint64 bytesTotal) { m_host.Winsock1_DataArrival(bytesTotal); });
        QObject::connect(port, &SocketPort::errorOccurred, port,
                         [this](qint32 number, const QString &description, qint32 statusCode) {
                             m_host.Winsock1_Error(number, description, statusCode);
                         });
    }
    return *m_socket;
}

SerialPort &EquipmentLink::serialPort()
{
    if (!m_serialPort) {
        if (!m_makeSerialPort)
            throw ProgramError::raised(QStringLiteral("No serial transport available"),
                                       QStringLiteral("CorvaneUsw.MSComm1"));
        m_serialPort = m_makeSerialPort();
        SerialPort *port = m_serialPort.get();
        QObject::connect(port, &SerialPort::received, port, [this] { m_host.MSComm1_OnComm(); });
    }
    return *m_serialPort;
}

void EquipmentLink::ReconnectSocket()
{
    passOn("CorvaneUsw.ReconnectSocket", [&] {
        m_linkState = 1;
        SocketPort &port = socket();
        port.close();
        m_lastConnectTime = m_clock.now();
        m_linkState = 2;
        m_host.NotifyStarted();
        const std::optional<SocketTarget> target = socketTarget(m_address);
        if (!target)
            return;
        if (!target->portValid)
            throw ProgramError::raised(QStringLiteral("Invalid port number \"%1\" in address %2")
                                           .arg(target->portText, m_address),
                                       QStringLiteral("CorvaneUsw.ReconnectSocket"));
        port.connectToHost(target->host, target->port);
    });
}

void EquipmentLink::ReconnectComm(const qlxLanguage &language)
{
    passOn("CorvaneUsw.ReconnectComm", [&] {
        m_linkState = 1;
        SerialPort &port = serialPort();
        if (port.isOpen())
            port.close();
        m_lastConnectTime = m_clock.now();
        m_linkState = 2;
        m_host.showConnectionLabel(language.Translate(u"6051|Connecting..."));
        const std::optional<SerialSettings> settings = SerialAddress::parse(m_address);
        QString refusal;
        if (!settings || !port.open(*settings, &refusal)) {
            // An unknown or busy port: no retry until the user starts again.
            m_host.StopDataCollection();
            m_host.showConnectionLabel(language.Translate(u"6056|Invalid Port Number"));
            m_host.portRefused(refusal);
            return;
        }
        m_host.NotifyStarted();
        m_host.showConnectionLabel(language.Translate(u"6052|Connected"));
    });
}

void EquipmentLink::Winsock1_Connect()
{
    m_linkState = 3;
    m_host.NotifyStarted();
}

int EquipmentLink::socketState() const
{
    return m_socket ? m_socket->state() : int(SocketPort::Closed);
}

bool EquipmentLink::serialPortOpen() const
{
    return m_serialPort && m_serialPort->isOpen();
}

QString EquipmentLink::GetSocketState(const qlxLanguage &language) const
{
    if (isSerial()) {
        return language.Translate(serialPortOpen() ? QStringView(u"6046|Opened")
                                                   : QStringView(u"6045|Closed"));
    }
    const int state = socketState();
    QString label = language.Translate(socketStateToken(state));
    if (state < SocketPort::Closed || state > SocketPort::Error)
        label += QString::number(state);
    return label;
}

void EquipmentLink::tick(const QDateTime &lastWeldTime, const qlxLanguage &language)
{
    if (isSerial())
        tickSerial(lastWeldTime, language);
    else
        tickSocket(lastWeldTime, language);
}

void EquipmentLink::tickSerial(const QDateTime &lastWeldTime, const qlxLanguage &language)
{
    if (serialPortOpen())
        m_host.showConnectionProblem(false);
    // Only the socket's connect event sets link state 3, so this silence rule never fires
    // on a serial link: a silent serial line is left open as it is.
    const QDateTime now = m_clock.now();
    if (m_linkState == 3 && wholeMinutesBetween(lastWeldTime, now) > kSilentMinutes &&
        wholeMinutesBetween(m_lastConnectTime, now) > kRetryMinutes)
        ReconnectComm(language);
}

void EquipmentLink::tickSocket(const QDateTime &lastWeldTime, const qlxLanguage &language)
{
    const QDateTime now = m_clock.now();
    const bool retryDue = wholeMinutesBetween(m_lastConnectTime, now) > kRetryMinutes;
    const bool silent = wholeMinutesBetween(lastWeldTime, now) > kSilentMinutes;
    switch (socketState()) {
    case SocketPort::Connecting:
        if (m_linkState == 2 && retryDue)
            ReconnectSocket();
        break;
    case SocketPort::Connected:
        if (m_linkState == 3 && silent && retryDue)
            ReconnectSocket();
        break;
    case SocketPort::Closing:
        if (m_linkState == 3)
            ReconnectSocket();
        break;
    case SocketPort::Error:
        ReconnectSocket();
        break;
    default:
        break;
    }

    m_host.showConnectionLabel(GetSocketState(language));
    switch (socketState()) {
    case SocketPort::Open:
    case SocketPort::ConnectionPending:
    case SocketPort::ResolvingHost:
    case SocketPort::HostResolved:
    case SocketPort::Connecting:
    case SocketPort::Closing:
        m_host.showConnectionProblem(true);
        break;
    case SocketPort::Closed:
    case SocketPort::Listening:
    case SocketPort::Connected:
        m_host.showConnectionProblem(false);
        break;
    default:
        break;
    }
}

void EquipmentLink::close()
{
    if (m_socket && m_socket->state() != SocketPort::Closed)
        m_socket->close();
    if (m_serialPort && m_serialPort->isOpen())
        m_serialPort->close();
}

QByteArray EquipmentLink::readSocket()
{
    return m_socket ? m_socket->readAll() : QByteArray();
}

QByteArray EquipmentLink::readSerialPort()
{
    return m_serialPort ? m_serialPort->readAll() : QByteArray();
}

qint64 EquipmentLink::serialBytesWaiting() const
{
    return m_serialPort ? m_serialPort->bytesWaiting() : 0;
}

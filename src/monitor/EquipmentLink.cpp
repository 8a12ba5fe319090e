#include "EquipmentLink.h"

#include "LinkRules.h"
#include "MonitorLogging.h"

#include "platform/Clock.h"
#include "platform/ErrorPassing.h"
#include "platform/SerialAddress.h"
#include "platform/SerialPort.h"
#include "platform/SocketPort.h"
#include "platform/qlxLanguage.h"

#include <QRandomGenerator>

using namespace LinkRules;

namespace {

constexpr qint64 kSilentMinutes = 5;
constexpr qint64 kRetryMinutes = 1;
// A serial device that went away is tried again about as often as a refused TCP
// connection, with some jitter so that it does not fall into step with a flapping line.
constexpr qint64 kSerialReopenMs = 2000;
constexpr qint64 kSerialReopenJitterMs = 1000;

} // namespace

EquipmentLink::EquipmentLink(const Clock &clock, SocketMaker makeSocket,
                             SerialPortMaker makeSerialPort)
    : m_clock(clock)
    , m_makeSocket(std::move(makeSocket))
    , m_makeSerialPort(std::move(makeSerialPort))
{}

EquipmentLink::~EquipmentLink()
{
    // The ports' events must not reach a monitor that is going away.
    if (m_socket)
        QObject::disconnect(m_socket.get(), nullptr, this, nullptr);
    if (m_serialPort)
        QObject::disconnect(m_serialPort.get(), nullptr, this, nullptr);
}

bool EquipmentLink::isSerial() const
{
    return SerialAddress::isSerial(m_address);
}

void EquipmentLink::setLinkState(LinkState state)
{
    if (state == m_linkState)
        return;
    m_linkState = state;
    if (state != LinkState::ConnectRequested)
        m_serialLost = false;
    emit linkStateChanged(state);
}

SocketPort &EquipmentLink::socket()
{
    if (!m_socket) {
        if (!m_makeSocket)
            throw ProgramError::raised(QStringLiteral("No TCP transport available"),
                                       QStringLiteral("CorvaneUsw.Winsock1"));
        m_socket = m_makeSocket();
        SocketPort *port = m_socket.get();
        connect(port, &SocketPort::connected, this, &EquipmentLink::onSocketConnected);
        connect(port, &SocketPort::dataArrival, this, &EquipmentLink::readSocket);
        connect(port, &SocketPort::closed, this, &EquipmentLink::closed);
        connect(port, &SocketPort::errorOccurred, this, &EquipmentLink::errorOccurred);
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
        connect(port, &SerialPort::received, this, &EquipmentLink::readSerialPort);
        connect(port, &SerialPort::lost, this, &EquipmentLink::onSerialLost);
    }
    return *m_serialPort;
}

void EquipmentLink::readSocket()
{
    if (m_paused || !m_socket)
        return;
    // Everything that arrived is read, however the port counted its events.
    const QByteArray bytes = m_socket->readAll();
    if (!bytes.isEmpty())
        emit bytesArrived(bytes);
}

void EquipmentLink::readSerialPort()
{
    if (m_paused || !m_serialPort)
        return;
    const QByteArray bytes = m_serialPort->readAll();
    if (!bytes.isEmpty())
        emit bytesArrived(bytes);
}

void EquipmentLink::setPaused(bool paused)
{
    if (paused == m_paused)
        return;
    m_paused = paused;
    qCDebug(lcMonitor) << m_address << (paused ? "paused" : "resumed");
    if (!paused) {
        readSocket();
        readSerialPort();
    }
}

void EquipmentLink::onSocketConnected()
{
    setLinkState(LinkState::Connected);
    emit connected();
}

void EquipmentLink::onSerialLost()
{
    // Only a port the link had open while collecting is looked after; a stop closes
    // the port on purpose.
    if (m_linkState != LinkState::ConnectRequested)
        return;
    qCInfo(lcMonitor) << m_address << "serial device lost";
    m_serialLost = true;
    m_lastConnectTime = m_clock.now();
    m_reopenDelayMs = kSerialReopenMs + QRandomGenerator::global()->bounded(kSerialReopenJitterMs);
    emit closed();
}

void EquipmentLink::ReconnectSocket()
{
    passOn("CorvaneUsw.ReconnectSocket", [&] {
        setLinkState(LinkState::Stopped);
        SocketPort &port = socket();
        port.close();
        m_lastConnectTime = m_clock.now();
        setLinkState(LinkState::ConnectRequested);
        emit connectAttempted();
        const std::optional<SocketTarget> target = socketTarget(m_address);
        if (!target)
            return;
        if (!target->portValid)
            throw ProgramError::raised(QStringLiteral("Invalid port number \"%1\" in address %2")
                                           .arg(target->portText, m_address),
                                       QStringLiteral("CorvaneUsw.ReconnectSocket"));
        qCDebug(lcMonitor) << "connecting" << m_address;
        port.connectToHost(target->host, target->port);
    });
}

void EquipmentLink::ReconnectComm(const qlxLanguage &language)
{
    passOn("CorvaneUsw.ReconnectComm", [&] {
        setLinkState(LinkState::Stopped);
        SerialPort &port = serialPort();
        if (port.isOpen())
            port.close();
        m_lastConnectTime = m_clock.now();
        setLinkState(LinkState::ConnectRequested);
        emit connectionLabelChanged(language.Translate(u"6051|Connecting..."));
        const std::optional<SerialSettings> settings = SerialAddress::parse(m_address);
        QString refusal;
        if (!settings || !port.open(*settings, &refusal)) {
            // An unknown or busy port: no retry until the user starts again.
            qCInfo(lcMonitor) << m_address << "refused:" << refusal;
            emit portRefused(refusal);
            emit connectionLabelChanged(language.Translate(u"6056|Invalid Port Number"));
            return;
        }
        emit connectAttempted();
        emit connectionLabelChanged(language.Translate(u"6052|Connected"));
    });
}

void EquipmentLink::reopenLostSerialPort(const qlxLanguage &language)
{
    const QDateTime now = m_clock.now();
    if (m_lastConnectTime.msecsTo(now) < m_reopenDelayMs)
        return;
    m_lastConnectTime = now;
    const std::optional<SerialSettings> settings = SerialAddress::parse(m_address);
    if (settings && serialPort().open(*settings, nullptr)) {
        qCInfo(lcMonitor) << m_address << "serial device back";
        m_serialLost = false;
        emit connectionLabelChanged(language.Translate(u"6052|Connected"));
        emit connected();
        return;
    }
    m_reopenDelayMs = kSerialReopenMs + QRandomGenerator::global()->bounded(kSerialReopenJitterMs);
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
    if (m_serialLost) {
        emit connectionLabelChanged(GetSocketState(language));
        emit connectionProblemChanged(true);
        reopenLostSerialPort(language);
        return;
    }
    if (serialPortOpen())
        emit connectionProblemChanged(false);
    // Only the socket's connect event sets link state 3, so this silence rule never fires
    // on a serial link: a silent serial line is left open as it is.
    const QDateTime now = m_clock.now();
    if (m_linkState == LinkState::Connected &&
        wholeMinutesBetween(lastWeldTime, now) > kSilentMinutes &&
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
        if (m_linkState == LinkState::ConnectRequested && retryDue)
            ReconnectSocket();
        break;
    case SocketPort::Connected:
        if (m_linkState == LinkState::Connected && silent && retryDue)
            ReconnectSocket();
        break;
    case SocketPort::Closing:
        if (m_linkState == LinkState::Connected)
            ReconnectSocket();
        break;
    case SocketPort::Error:
        ReconnectSocket();
        break;
    default:
        break;
    }

    emit connectionLabelChanged(GetSocketState(language));
    switch (socketState()) {
    case SocketPort::Open:
    case SocketPort::ConnectionPending:
    case SocketPort::ResolvingHost:
    case SocketPort::HostResolved:
    case SocketPort::Connecting:
    case SocketPort::Closing:
        emit connectionProblemChanged(true);
        break;
    case SocketPort::Closed:
    case SocketPort::Listening:
    case SocketPort::Connected:
        emit connectionProblemChanged(false);
        break;
    default:
        break;
    }
}

void EquipmentLink::close()
{
    m_serialLost = false;
    if (m_socket && m_socket->state() != SocketPort::Closed)
        m_socket->close();
    if (m_serialPort && m_serialPort->isOpen())
        m_serialPort->close();
}

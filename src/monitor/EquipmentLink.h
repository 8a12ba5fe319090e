#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <functional>
#include <memory>

class Clock;
class SerialPort;
class SocketPort;
class qlxLanguage;

// What the link needs of the monitor that owns it: the caption and indicator updates,
// stopping the whole collection when a serial port is refused, and the entry points of
// the port events (which the monitor runs under its error report).
class LinkHost
{
public:
    virtual ~LinkHost() = default;

    virtual void NotifyStarted() = 0;
    virtual void StopDataCollection() = 0;
    // The serial port refused to open (an unknown or busy port, settings it cannot do).
    virtual void portRefused(const QString &reason) = 0;
    virtual void showConnectionLabel(const QString &label) = 0;
    virtual void showConnectionProblem(bool problem) = 0;

    virtual void Winsock1_Connect() = 0;
    virtual void Winsock1_DataArrival(qint64 bytesTotal) = 0;
    virtual void Winsock1_Error(qint32 number, const QString &description, qint32 statusCode) = 0;
    virtual void MSComm1_OnComm() = 0;
};

// The link of one monitor to its power supply, over a serial port or a TCP socket as
// the address says. It opens and re-opens the connection and watches a silent or broken
// link on every timer tick. The power supply sends unasked; nothing is ever written.
//
// Link state: 0 shut down, 1 stopped (also on entry to every reconnect), 2 connect
// requested, 3 TCP connection established (set only by the socket's connect event, so a
// serial link stays in 2 while it receives).
class EquipmentLink
{
public:
    using SocketMaker = std::function<std::unique_ptr<SocketPort>()>;
    using SerialPortMaker = std::function<std::unique_ptr<SerialPort>()>;

    EquipmentLink(const Clock &clock, LinkHost &host, SocketMaker makeSocket,
                  SerialPortMaker makeSerialPort);
    ~EquipmentLink();

    const QString &address() const { return m_address; }
    void setAddress(const QString &address) { m_address = address; }
    bool isSerial() const;

    int linkState() const { return m_linkState; }
    void setLinkState(int state) { m_linkState = state; }
    QDateTime lastConnectTime() const { return m_lastConnectTime; }

    void ReconnectSocket();
    void ReconnectComm(const qlxLanguage &language);
    void Winsock1_Connect();

    // The connection label of the current state, translated.
    QString GetSocketState(const qlxLanguage &language) const;
    // The socket's state, 0 (closed) while no socket was made yet.
    int socketState() const;
    bool serialPortOpen() const;

    // The reconnect rules of one timer tick, given the time of the last weld.
    void tick(const QDateTime &lastWeldTime, const qlxLanguage &language);

    // Closes whichever port is open, for a stop of collection.
    void close();

    QByteArray readSocket();
    QByteArray readSerialPort();
    qint64 serialBytesWaiting() const;

private:
    SocketPort &socket();
    SerialPort &serialPort();
    void tickSerial(const QDateTime &lastWeldTime, const qlxLanguage &language);
    void tickSocket(const QDateTime &lastWeldTime, const qlxLanguage &language);

    const Clock &m_clock;
    LinkHost &m_host;
    SocketMaker m_makeSocket;
    SerialPortMaker m_makeSerialPort;
    std::unique_ptr<SocketPort> m_socket;
    std::unique_ptr<SerialPort> m_serialPort;

    QString m_address;
    int m_linkState = 1;
    QDateTime m_lastConnectTime;
};

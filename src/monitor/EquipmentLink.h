#pragma once

#include "LinkState.h"

#include <QByteArray>
#include <QDateTime>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>

class Clock;
class SerialPort;
class SocketPort;
class qlxLanguage;

// The link of one monitor to its power supply, over a serial port or a TCP socket as
// the address says. It opens and re-opens the connection, watches a silent or broken
// link on every timer tick, reads what arrives and tells its monitor through signals:
// data flow one way, from the port through the link to the monitor. The power supply
// sends unasked; nothing is ever written.
class EquipmentLink : public QObject
{
    Q_OBJECT

public:
    using SocketMaker = std::function<std::unique_ptr<SocketPort>()>;
    using SerialPortMaker = std::function<std::unique_ptr<SerialPort>()>;

    EquipmentLink(const Clock &clock, SocketMaker makeSocket, SerialPortMaker makeSerialPort);
    ~EquipmentLink() override;

    const QString &address() const { return m_address; }
    void setAddress(const QString &address) { m_address = address; }
    bool isSerial() const;

    LinkState linkState() const { return m_linkState; }
    void setLinkState(LinkState state);
    QDateTime lastConnectTime() const { return m_lastConnectTime; }

    void ReconnectSocket();
    void ReconnectComm(const qlxLanguage &language);

    // The connection label of the current state, translated.
    QString GetSocketState(const qlxLanguage &language) const;
    // The socket's state, 0 (closed) while no socket was made yet.
    int socketState() const;
    bool serialPortOpen() const;
    // A serial port that went away while collecting (an adapter pulled out): the link
    // keeps trying to open it again.
    bool serialPortLost() const { return m_serialLost; }

    // The reconnect rules of one timer tick, given the time of the last weld.
    void tick(const QDateTime &lastWeldTime, const qlxLanguage &language);

    // Closes whichever port is open, for a stop of collection.
    void close();

    // While paused, arrived bytes wait in the port (and a TCP sender is slowed by the
    // connection's flow control) until the link is resumed.
    void setPaused(bool paused);

signals:
    void bytesArrived(const QByteArray &bytes);
    // The TCP connection is established (link state 3 is already set).
    void connected();
    // The power supply closed the connection, or the serial device went away.
    void closed();
    void errorOccurred(qint32 number, const QString &description, qint32 statusCode);
    // A connect or reopen was started.
    void connectAttempted();
    // The serial port was refused (an unknown or busy port, settings it cannot do), for
    // the reason given: no further retry until the user starts again.
    void portRefused(const QString &reason);
    void connectionLabelChanged(const QString &label);
    void connectionProblemChanged(bool problem);
    void linkStateChanged(LinkState state);

private:
    SocketPort &socket();
    SerialPort &serialPort();
    void readSocket();
    void readSerialPort();
    void onSocketConnected();
    void onSerialLost();
    void tickSerial(const QDateTime &lastWeldTime, const qlxLanguage &language);
    void tickSocket(const QDateTime &lastWeldTime, const qlxLanguage &language);
    void reopenLostSerialPort(const qlxLanguage &language);

    const Clock &m_clock;
    SocketMaker m_makeSocket;
    SerialPortMaker m_makeSerialPort;
    std::unique_ptr<SocketPort> m_socket;
    std::unique_ptr<SerialPort> m_serialPort;

    QString m_address;
    LinkState m_linkState = LinkState::Stopped;
    QDateTime m_lastConnectTime;
    bool m_serialLost = false;
    bool m_paused = false;
    qint64 m_reopenDelayMs = 0;
};

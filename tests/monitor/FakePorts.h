#pragma once

#include "platform/SerialPort.h"
#include "platform/SocketPort.h"

#include <QList>
#include <QPair>

// A socket whose state a test sets by hand; it records what the link asks of it.
class FakeSocketPort : public SocketPort
{
    Q_OBJECT

public:
    using SocketPort::SocketPort;

    void connectToHost(const QString &host, quint16 port) override
    {
        connects.append({host, port});
        m_state = Connecting;
    }
    void close() override
    {
        ++closes;
        m_state = Closed;
    }
    int state() const override { return m_state; }
    QByteArray readAll() override { return std::exchange(m_pending, {}); }
    QString remoteHost() const override
    {
        return connects.isEmpty() ? QString() : connects.last().first;
    }
    quint16 remotePort() const override { return connects.isEmpty() ? 0 : connects.last().second; }

    void setState(int state) { m_state = state; }
    // The power supply accepts the connection.
    void accept()
    {
        m_state = Connected;
        emit connected();
    }
    // Bytes arrive from the power supply.
    void deliver(const QByteArray &bytes)
    {
        m_pending += bytes;
        emit dataArrival(bytes.size());
    }

    QList<QPair<QString, quint16>> connects;
    int closes = 0;

private:
    int m_state = Closed;
    QByteArray m_pending;
};

// A serial port that opens or refuses as a test says and records the settings it got.
class FakeSerialPort : public SerialPort
{
    Q_OBJECT

public:
    using SerialPort::SerialPort;

    bool open(const SerialSettings &settings, QString *errorText) override
    {
        opened.append(settings);
        if (refuse) {
            if (errorText)
                *errorText = QStringLiteral("no such port");
            return false;
        }
        m_open = true;
        return true;
    }
    void close() override
    {
        ++closes;
        m_open = false;
    }
    bool isOpen() const override { return m_open; }
    qint64 bytesWaiting() const override { return m_pending.size(); }
    QByteArray readAll() override { return std::exchange(m_pending, {}); }

    void deliver(const QByteArray &bytes)
    {
        m_pending += bytes;
        emit received();
    }
    // The adapter is pulled out: the port closes itself and says so.
    void pull()
    {
        m_open = false;
        emit lost();
    }

    bool refuse = false;
    QList<SerialSettings> opened;
    int closes = 0;

private:
    bool m_open = false;
    QByteArray m_pending;
};

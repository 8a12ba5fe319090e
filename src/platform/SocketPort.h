#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

// A TCP client socket as the monitor's link and the test console see it: connect, close,
// a state in the numbering below, and events for connect, close, errors and arriving
// data. After an error the state stays Error until the next connect attempt.
class SocketPort : public QObject
{
    Q_OBJECT

public:
    enum State {
        Closed = 0,
        Open = 1,
        Listening = 2,
        ConnectionPending = 3,
        ResolvingHost = 4,
        HostResolved = 5,
        Connecting = 6,
        Connected = 7,
        Closing = 8,
        Error = 9,
    };

    using QObject::QObject;

    virtual void connectToHost(const QString &host, quint16 port) = 0;
    virtual void close() = 0;
    virtual int state() const = 0;
    // Everything received and not yet read.
    virtual QByteArray readAll() = 0;
    virtual QString remoteHost() const = 0;
    virtual quint16 remotePort() const = 0;

signals:
    void connected();
    void closed();
    void dataArrival(qint64 bytesTotal);
    // number and description of the failure; statusCode is the system's own code.
    void errorOccurred(qint32 number, const QString &description, qint32 statusCode);
};

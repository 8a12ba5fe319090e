#pragma once

#include "SocketPort.h"

#include <QTcpSocket>

// The TCP link to a power supply over a QTcpSocket, seen through the classic client
// socket's numbering of states and events:
//
// - A connect attempt passes through 4 (resolving host) and 6 (connecting) to 7
//   (connected), which emits connected().
// - A failure emits errorOccurred() and holds state 9 (error) until the next
//   connectToHost() starts over, so the link's timer sees it and reconnects.
// - When the power supply closes the connection, closed() is emitted and the state
//   stays 8 (closing) until close() or the next connectToHost(): a peer close is not
//   an error, but the link must still notice it and reconnect.
// - close() from any state drops the connection at once and leaves state 0.
class TcpSocketPort : public SocketPort
{
    Q_OBJECT

public:
    explicit TcpSocketPort(QObject *parent = nullptr);
    ~TcpSocketPort() override;

    void connectToHost(const QString &host, quint16 port) override;
    void close() override;
    int state() const override;
    QByteArray readAll() override;
    QString remoteHost() const override;
    quint16 remotePort() const override;

    // Numbers from kUnmappedErrorBase on are failures that have no classic number.
    static constexpr qint32 kUnmappedErrorBase = 19000;

    // The classic socket error number (10061 for a refused connection, 11001 for an
    // unknown host, ...) of a socket failure, stable across platforms for the event log.
    static qint32 errorNumber(QAbstractSocket::SocketError error);

private:
    enum class Ending { None, PeerClosed, Failed };

    void onErrorOccurred(QAbstractSocket::SocketError error);
    void onDisconnected();

    QTcpSocket m_socket;
    Ending m_ending = Ending::None;
    QString m_host;
    quint16 m_port = 0;
};

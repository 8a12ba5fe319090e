#pragma once

#include "SocketPort.h"

#include <QElapsedTimer>
#include <QTcpSocket>
#include <QTimer>

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
// - A connect attempt that fails is reported no sooner than kMinimumAttemptMs after it
//   began (plus up to half as long again, at random), and shows 6 (connecting) until then. The
//   link's timer reconnects a socket in state 9 on its next 100 ms tick; where the system refuses a
//   connection at once (a power supply switched off over a weekend), that would write ten event-log
//   lines a second. Holding the failure back paces retries to about one an attempt-time, as a stack
//   that retries its SYN before giving up does.
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

    static constexpr int kMinimumAttemptMs = 2000;
    static constexpr qint64 kReadBufferBytes = 1 << 20;
    // Tests that are not about pacing may shorten the attempt time.
    void setMinimumAttemptTime(int ms) { m_minimumAttemptMs = ms; }

    // Numbers from kUnmappedErrorBase on are failures that have no classic number.
    static constexpr qint32 kUnmappedErrorBase = 19000;

    // The classic socket error number (10061 for a refused connection, 11001 for an
    // unknown host, ...) of a socket failure, stable across platforms for the event log.
    static qint32 errorNumber(QAbstractSocket::SocketError error);

private:
    enum class Ending { None, PeerClosed, FailureHeldBack, Failed };

    void onErrorOccurred(QAbstractSocket::SocketError error);
    void onDisconnected();
    void reportFailure();

    QTcpSocket m_socket;
    Ending m_ending = Ending::None;
    QString m_host;
    quint16 m_port = 0;
    int m_minimumAttemptMs = kMinimumAttemptMs;
    QElapsedTimer m_attemptStarted;
    QTimer m_failureHold;
    QAbstractSocket::SocketError m_failure = QAbstractSocket::UnknownSocketError;
    QString m_failureText;
};

#include "TcpSocketPort.h"

#include <QRandomGenerator>

TcpSocketPort::TcpSocketPort(QObject *parent)
    : SocketPort(parent)
{
    connect(&m_socket, &QTcpSocket::connected, this, &SocketPort::connected);
    connect(&m_socket, &QTcpSocket::readyRead, this,
            [this] { emit dataArrival(m_socket.bytesAvailable()); });
    connect(&m_socket, &QTcpSocket::errorOccurred, this, &TcpSocketPort::onErrorOccurred);
    connect(&m_socket, &QTcpSocket::disconnected, this, &TcpSocketPort::onDisconnected);
    // What the monitor has not taken yet stays with the system, whose flow control then
    // holds back a power supply that sends faster than the monitor keeps up.
    m_socket.setReadBufferSize(kReadBufferBytes);
    m_failureHold.setSingleShot(true);
    connect(&m_failureHold, &QTimer::timeout, this, &TcpSocketPort::reportFailure);
}

TcpSocketPort::~TcpSocketPort()
{
    // The socket's own destructor would report the connection's end to a half
    // destroyed port.
    m_socket.disconnect(this);
    m_socket.abort();
}

void TcpSocketPort::connectToHost(const QString &host, quint16 port)
{
    {
        // Dropping the old connection is part of starting over, not a peer close.
        const QSignalBlocker quiet(m_socket);
        m_socket.abort();
    }
    m_failureHold.stop();
    m_ending = Ending::None;
    m_host = host;
    m_port = port;
    m_attemptStarted.start();
    m_socket.connectToHost(host, port);
}

void TcpSocketPort::close()
{
    // abort() rather than disconnectFromHost(): the monitor never writes, so there is
    // nothing to flush, and the state must be 0 when close() returns.
    const QSignalBlocker quiet(m_socket);
    m_socket.abort();
    m_failureHold.stop();
    m_ending = Ending::None;
}

int TcpSocketPort::state() const
{
    if (m_ending == Ending::Failed)
        return Error;
    if (m_ending == Ending::FailureHeldBack)
        return Connecting;
    if (m_ending == Ending::PeerClosed)
        return Closing;
    switch (m_socket.state()) {
    case QAbstractSocket::UnconnectedState:
        return Closed;
    case QAbstractSocket::HostLookupState:
        return ResolvingHost;
    case QAbstractSocket::ConnectingState:
        return Connecting;
    case QAbstractSocket::ConnectedState:
        return Connected;
    case QAbstractSocket::BoundState:
        return Open;
    case QAbstractSocket::ListeningState:
        return Listening;
    case QAbstractSocket::ClosingState:
        return Closing;
    }
    return Closed;
}

QByteArray TcpSocketPort::readAll()
{
    return m_socket.readAll();
}

QString TcpSocketPort::remoteHost() const
{
    if (m_socket.state() == QAbstractSocket::ConnectedState)
        return m_socket.peerAddress().toString();
    return m_host;
}

quint16 TcpSocketPort::remotePort() const
{
    if (m_socket.state() == QAbstractSocket::ConnectedState)
        return m_socket.peerPort();
    return m_port;
}

void TcpSocketPort::onErrorOccurred(QAbstractSocket::SocketError error)
{
    // The power supply closing its end is reported by closed(), as the classic socket
    // does, not as a failure.
    if (error == QAbstractSocket::RemoteHostClosedError)
        return;
    m_failure = error;
    m_failureText = m_socket.errorString();
    const bool duringAttempt = m_ending == Ending::None && m_attemptStarted.isValid() &&
                               m_socket.state() != QAbstractSocket::ConnectedState;
    const qint64 remaining = m_minimumAttemptMs - m_attemptStarted.elapsed();
    if (duringAttempt && remaining > 0) {
        m_ending = Ending::FailureHeldBack;
        // Some jitter keeps the retries of a refused link out of step with a line that
        // comes and goes at a fixed rhythm.
        const int jitter = int(QRandomGenerator::global()->bounded(m_minimumAttemptMs / 2 + 1));
        m_failureHold.start(int(remaining) + jitter);
        return;
    }
    reportFailure();
}

void TcpSocketPort::reportFailure()
{
    m_ending = Ending::Failed;
    const qint32 number = errorNumber(m_failure);
    // The status code is the number's own: 10061 for a refused connection.
    emit errorOccurred(number, m_failureText, number);
}

void TcpSocketPort::onDisconnected()
{
    if (m_ending == Ending::Failed || m_ending == Ending::FailureHeldBack)
        return;
    m_ending = Ending::PeerClosed;
    emit closed();
}

qint32 TcpSocketPort::errorNumber(QAbstractSocket::SocketError error)
{
    switch (error) {
    case QAbstractSocket::ConnectionRefusedError:
        return 10061;
    case QAbstractSocket::RemoteHostClosedError:
        return 10054;
    case QAbstractSocket::HostNotFoundError:
        return 11001;
    case QAbstractSocket::SocketAccessError:
        return 10013;
    case QAbstractSocket::SocketResourceError:
        return 10055;
    case QAbstractSocket::SocketTimeoutError:
    case QAbstractSocket::ProxyConnectionTimeoutError:
        return 10060;
    case QAbstractSocket::DatagramTooLargeError:
        return 10040;
    case QAbstractSocket::NetworkError:
        return 10050;
    case QAbstractSocket::AddressInUseError:
        return 10048;
    case QAbstractSocket::SocketAddressNotAvailableError:
        return 10049;
    case QAbstractSocket::UnsupportedSocketOperationError:
        return 10045;
    case QAbstractSocket::UnfinishedSocketOperationError:
    case QAbstractSocket::OperationError:
        return 10036;
    case QAbstractSocket::ProxyConnectionRefusedError:
        return 10061;
    case QAbstractSocket::ProxyConnectionClosedError:
        return 10054;
    case QAbstractSocket::ProxyNotFoundError:
        return 11001;
    case QAbstractSocket::ProxyAuthenticationRequiredError:
    case QAbstractSocket::ProxyProtocolError:
    case QAbstractSocket::SslHandshakeFailedError:
    case QAbstractSocket::SslInternalError:
    case QAbstractSocket::SslInvalidUserDataError:
    case QAbstractSocket::TemporaryError:
    case QAbstractSocket::UnknownSocketError:
        break;
    }
    // Failures without a classic counterpart keep Qt's code, moved clear of the classic
    // numbers so that an event log line still tells them apart.
    return kUnmappedErrorBase + qint32(error);
}

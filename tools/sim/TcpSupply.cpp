#include "TcpSupply.h"

TcpSupply::TcpSupply(quint16 port, std::unique_ptr<WeldSource> source, int intervalMs,
                     std::optional<qint64> count, QObject *parent)
    : Supply(std::move(source), intervalMs, count, parent)
    , m_port(port)
{
    connect(&m_server, &QTcpServer::newConnection, this, &TcpSupply::takeClient);
}

bool TcpSupply::open(QString *errorText)
{
    if (m_server.listen(QHostAddress::LocalHost, m_port))
        return true;
    *errorText =
        QStringLiteral("cannot listen on 127.0.0.1:%1: %2").arg(m_port).arg(m_server.errorString());
    return false;
}

QString TcpSupply::startLine() const
{
    return QStringLiteral("tcp 127.0.0.1:%1").arg(m_server.serverPort());
}

void TcpSupply::takeClient()
{
    while (QTcpSocket *client = m_server.nextPendingConnection()) {
        if (isEnding()) {
            client->abort();
            client->deleteLater();
            continue;
        }
        dropClient();
        m_client = client;
        // The monitor never sends; whatever a client says is read and dropped.
        connect(client, &QTcpSocket::readyRead, client, [client] { client->readAll(); });
        connect(client, &QTcpSocket::bytesWritten, this, [this] {
            if (canSend())
                resume();
        });
        connect(client, &QTcpSocket::disconnected, this, [this, client] {
            client->deleteLater();
            if (client == m_client && isEnding())
                markFinished();
        });
    }
    resume();
}

void TcpSupply::dropClient()
{
    if (!m_client)
        return;
    QTcpSocket *old = m_client;
    m_client = nullptr;
    old->disconnect(this);
    old->abort();
    old->deleteLater();
}

bool TcpSupply::canSend()
{
    return m_client && m_client->state() == QAbstractSocket::ConnectedState &&
           m_client->bytesToWrite() < kBacklogBytes;
}

void TcpSupply::send(const QByteArray &bytes)
{
    m_client->write(bytes);
}

void TcpSupply::drain()
{
    m_server.close();
    if (!m_client || m_client->state() != QAbstractSocket::ConnectedState) {
        markFinished();
        return;
    }
    // Closes once every byte is written; disconnected() then finishes the supply.
    m_client->disconnectFromHost();
}

void TcpSupply::closeNow()
{
    m_server.close();
    if (m_client) {
        m_client->flush();
        dropClient();
    }
}

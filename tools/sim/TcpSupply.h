#pragma once

#include "Supply.h"

#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>

// A power supply on Ethernet: listens on the loopback interface and welds only while a
// client is connected. The power supply serves one client: one that connects while
// another is still there takes its place, as a monitor that reconnects after a silence
// does. The cycle count goes on across clients. After the last weld the client is
// closed once everything is written.
class TcpSupply : public Supply
{
    Q_OBJECT

public:
    TcpSupply(quint16 port, std::unique_ptr<WeldSource> source, int intervalMs,
              std::optional<qint64> count, QObject *parent = nullptr);

    bool open(QString *errorText) override;
    QString startLine() const override;

protected:
    bool canSend() override;
    void send(const QByteArray &bytes) override;
    void drain() override;
    void closeNow() override;

private:
    void takeClient();
    void dropClient();

    quint16 m_port;
    QTcpServer m_server;
    QPointer<QTcpSocket> m_client;
};

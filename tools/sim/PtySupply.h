#pragma once

#include "Supply.h"

#include <QSocketNotifier>

#include <memory>

// A power supply on a serial line that ends in a pseudo-terminal: the program keeps the
// master side and a monitor opens the slave side by its path like any serial device.
// It welds only while someone has the slave side open (the master sees no hang-up), so
// nothing is sent into a line nobody listens to.
//
// Closing the master discards whatever the reader has not read yet, so after the last
// weld the master stays open until the reader has taken everything, has gone, or a few
// seconds have passed.
class PtySupply : public Supply
{
    Q_OBJECT

public:
    PtySupply(std::unique_ptr<WeldSource> source, int intervalMs, std::optional<qint64> count,
              QObject *parent = nullptr);
    ~PtySupply() override;

    bool open(QString *errorText) override;
    QString startLine() const override;

protected:
    bool canSend() override;
    void send(const QByteArray &bytes) override;
    void drain() override;
    void closeNow() override;

private:
    static constexpr int kPollMs = 20;
    static constexpr int kDrainLimitMs = 5000;

    bool readerPresent() const;
    void flushPending();
    void pollReader();
    void checkDrained();
    // Bytes the reader has not read yet; -1 when that cannot be seen.
    int unreadBytes();

    int m_master = -1;
    int m_watch = -1;
    QString m_slavePath;
    QByteArray m_pending;
    std::unique_ptr<QSocketNotifier> m_writable;
    QTimer m_poll;
    int m_drainMs = 0;
    int m_quietPolls = 0;
};

#pragma once

#include "WeldSource.h"

#include <QObject>
#include <QTimer>

#include <memory>
#include <optional>

// One simulated power supply: every interval it welds and puts the weld's bytes on its
// link, as long as the link can take them (a TCP supply needs a client, a pseudo-terminal
// a reader, and no link may be backed up); a supply that cannot send waits instead of
// welding, as a welder waits for its operator. After its last weld it hands over what is
// still pending and reports finished().
class Supply : public QObject
{
    Q_OBJECT

public:
    Supply(std::unique_ptr<WeldSource> source, int intervalMs, std::optional<qint64> count,
           QObject *parent = nullptr);

    // Opens the link; false with the reason.
    virtual bool open(QString *errorText) = 0;
    // The line announced on standard output, such as "tcp 127.0.0.1:4000".
    virtual QString startLine() const = 0;

    void start();
    // Ends at once (the program is being stopped): whatever can be flushed is, the link
    // is closed.
    void stop();

    bool isFinished() const { return m_finished; }
    // The reason the link failed while running; empty when it did not.
    const QString &failure() const { return m_failure; }

signals:
    void finished();

protected:
    // Links keep at most this much unsent before the supply waits.
    static constexpr qint64 kBacklogBytes = 64 * 1024;

    virtual bool canSend() = 0;
    virtual void send(const QByteArray &bytes) = 0;
    // After the last weld: hand over what is pending, then call markFinished().
    virtual void drain() = 0;
    virtual void closeNow() = 0;

    // The link can take welds again.
    void resume();
    void markFinished();
    // The link broke: the supply ends with the reason.
    void fail(const QString &reason);
    bool isEnding() const { return m_ending; }

private:
    void step();
    void endWelding();

    std::unique_ptr<WeldSource> m_source;
    std::optional<qint64> m_count;
    qint64 m_welds = 0;
    QTimer m_timer;
    bool m_waiting = false;
    bool m_ending = false;
    bool m_finished = false;
    QString m_failure;
};

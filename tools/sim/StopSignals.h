#pragma once

#include <QObject>
#include <QSocketNotifier>

// Turns SIGINT and SIGTERM into a Qt signal, so that the program ends between two
// events with its files flushed instead of in the middle of a write. The handler only
// writes a byte into a pipe; the event loop reads it.
class StopSignals : public QObject
{
    Q_OBJECT

public:
    explicit StopSignals(QObject *parent = nullptr);
    ~StopSignals() override;

signals:
    void stopRequested();

private:
    static void handle(int signalNumber);
    void onReadable();

    static int s_pipe[2];
    QSocketNotifier *m_notifier = nullptr;
};

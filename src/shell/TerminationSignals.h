#pragma once

#include <QObject>

class QSocketNotifier;

// Turns SIGINT, SIGTERM and SIGHUP (on Windows: the console's control events) into a Qt signal
// on the event loop. The signal handler only
// writes the signal's number into a socket pair (a write is all that is safe there); a
// socket notifier on the other end reads it back in the event loop, where the program
// can stop its monitors and save its configurations. One instance at a time; the
// previous handlers are restored when it is destroyed.
class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    explicit TerminationSignals(QObject *parent = nullptr);
    ~TerminationSignals() override;

    // False when the socket pair or the handlers could not be set up.
    bool isActive() const { return m_active; }

    // What ends a headless run, in the words of the platform.
#ifdef Q_OS_WIN
    static constexpr const char *kHowToEnd = "Ctrl+C, Ctrl+Break or closing the console";
#else
    static constexpr const char *kHowToEnd = "SIGINT, SIGTERM or SIGHUP";
#endif

signals:
    void terminationRequested(int signalNumber);

private:
    void readSignal();

    QSocketNotifier *m_notifier = nullptr;
    bool m_active = false;
};

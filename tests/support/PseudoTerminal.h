#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

// A pseudo-terminal for tests of the serial line: the slave side is a real serial device
// that QSerialPort opens by its path, the master side plays the power supply's end of
// the cable. Both sides are in raw mode, so bytes pass unchanged. The slave stays open
// here as well (unless closeSlave() is called), so the master never sees a hang-up while
// the port under test is closed and reopened.
class PseudoTerminal
{
public:
    PseudoTerminal();
    ~PseudoTerminal();

    PseudoTerminal(const PseudoTerminal &) = delete;
    PseudoTerminal &operator=(const PseudoTerminal &) = delete;

    bool isValid() const { return m_master >= 0; }
    // The reason when the pseudo-terminal could not be made.
    const QString &errorText() const { return m_errorText; }

    // The device path of the slave side, such as /dev/pts/3.
    const QString &slavePath() const { return m_slavePath; }
    int masterFd() const { return m_master; }
    // The helper's own descriptor of the slave side; its line settings (tcgetattr) are
    // those the port under test has set. -1 after closeSlave().
    int slaveFd() const { return m_slave; }

    // Writes every byte on the master side, as the power supply sends them.
    bool write(QByteArrayView bytes);
    // Whatever the slave side sent, waiting up to timeoutMs for the first byte.
    QByteArray read(int timeoutMs);

    // Pulls the cable: the slave side sees the far end gone.
    void closeMaster();
    void closeSlave();

private:
    int m_master = -1;
    int m_slave = -1;
    QString m_slavePath;
    QString m_errorText;
};

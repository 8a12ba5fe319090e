#include "PseudoTerminal.h"

#include <cerrno>
#include <cstring>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

PseudoTerminal::PseudoTerminal()
{
    char name[128] = {};
    termios raw{};
    cfmakeraw(&raw);
    if (::openpty(&m_master, &m_slave, name, &raw, nullptr) != 0) {
        m_errorText = QString::fromLocal8Bit(std::strerror(errno));
        m_master = m_slave = -1;
        return;
    }
    m_slavePath = QString::fromLocal8Bit(name);
}

PseudoTerminal::~PseudoTerminal()
{
    closeSlave();
    closeMaster();
}

bool PseudoTerminal::write(QByteArrayView bytes)
{
    qsizetype done = 0;
    while (m_master >= 0 && done < bytes.size()) {
        const ssize_t n = ::write(m_master, bytes.data() + done, size_t(bytes.size() - done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        done += n;
    }
    return done == bytes.size();
}

QByteArray PseudoTerminal::read(int timeoutMs)
{
    QByteArray received;
    pollfd ready{m_master, POLLIN, 0};
    while (m_master >= 0 && ::poll(&ready, 1, received.isEmpty() ? timeoutMs : 0) > 0 &&
           (ready.revents & POLLIN)) {
        char chunk[4096];
        const ssize_t n = ::read(m_master, chunk, sizeof chunk);
        if (n <= 0)
            break;
        received.append(chunk, n);
    }
    return received;
}

void PseudoTerminal::closeMaster()
{
    if (m_master >= 0)
        ::close(m_master);
    m_master = -1;
}

void PseudoTerminal::closeSlave()
{
    if (m_slave >= 0)
        ::close(m_slave);
    m_slave = -1;
}

#include "PtySupply.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

PtySupply::PtySupply(std::unique_ptr<WeldSource> source, int intervalMs,
                     std::optional<qint64> count, QObject *parent)
    : Supply(std::move(source), intervalMs, count, parent)
{
    m_poll.setInterval(kPollMs);
    connect(&m_poll, &QTimer::timeout, this, &PtySupply::pollReader);
}

PtySupply::~PtySupply()
{
    closeNow();
}

bool PtySupply::open(QString *errorText)
{
    char name[128] = {};
    termios raw{};
    // Raw: the weld records are binary; no echo, no CR/LF translation, no XON/XOFF.
    cfmakeraw(&raw);
    int slave = -1;
    if (::openpty(&m_master, &slave, name, &raw, nullptr) != 0) {
        *errorText = QStringLiteral("cannot create a pseudo-terminal: %1")
                         .arg(QString::fromLocal8Bit(std::strerror(errno)));
        return false;
    }
    // The slave is the reader's to open; while nobody has it open the master sees a
    // hang-up, and that is how the supply knows whether anyone listens.
    ::close(slave);
    ::fcntl(m_master, F_SETFL, ::fcntl(m_master, F_GETFL) | O_NONBLOCK);
    m_slavePath = QString::fromLocal8Bit(name);
    m_writable = std::make_unique<QSocketNotifier>(m_master, QSocketNotifier::Write);
    m_writable->setEnabled(false);
    connect(m_writable.get(), &QSocketNotifier::activated, this, &PtySupply::flushPending);
    return true;
}

QString PtySupply::startLine() const
{
    return QStringLiteral("pty %1").arg(m_slavePath);
}

bool PtySupply::readerPresent() const
{
    pollfd state{m_master, POLLOUT, 0};
    return m_master >= 0 && ::poll(&state, 1, 0) >= 0 && !(state.revents & POLLHUP);
}

bool PtySupply::canSend()
{
    if (!readerPresent()) {
        m_poll.start();
        return false;
    }
    if (!m_pending.isEmpty())
        flushPending();
    return m_pending.size() < kBacklogBytes;
}

void PtySupply::send(const QByteArray &bytes)
{
    m_pending += bytes;
    flushPending();
}

void PtySupply::flushPending()
{
    m_writable->setEnabled(false);
    while (!m_pending.isEmpty()) {
        const ssize_t written = ::write(m_master, m_pending.constData(), size_t(m_pending.size()));
        if (written > 0) {
            m_pending.remove(0, written);
            m_quietPolls = 0;
            continue;
        }
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0 && errno == EAGAIN) {
            // The reader's queue is full: go on when it has room again.
            m_writable->setEnabled(true);
            return;
        }
        // The reader went away (EIO): keep the bytes for the next one.
        m_poll.start();
        return;
    }
    resume();
}

void PtySupply::pollReader()
{
    if (isEnding()) {
        checkDrained();
        return;
    }
    if (!readerPresent())
        return;
    m_poll.stop();
    flushPending();
    resume();
}

void PtySupply::drain()
{
    m_drainMs = 0;
    m_quietPolls = 0;
    flushPending();
    m_poll.start();
}

void PtySupply::checkDrained()
{
    m_drainMs += kPollMs;
    if (!m_pending.isEmpty() && readerPresent())
        flushPending();
    const int unread = unreadBytes();
    // Two quiet polls in a row: a write may take a moment to reach the reader's queue.
    m_quietPolls = unread == 0 ? m_quietPolls + 1 : 0;
    const bool delivered = m_pending.isEmpty() && m_quietPolls >= 2;
    const bool readerGone = m_watch < 0 && !readerPresent();
    if (delivered || readerGone || m_drainMs >= kDrainLimitMs) {
        closeNow();
        markFinished();
    }
}

int PtySupply::unreadBytes()
{
    // The reader's input queue belongs to the terminal, not to one descriptor: a
    // descriptor of our own on the slave side shows how much is still unread. A reader
    // that holds the line exclusively keeps us out; then only its hang-up or the time
    // limit tells.
    if (m_watch < 0 && !m_slavePath.isEmpty())
        m_watch = ::open(m_slavePath.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    int unread = -1;
    if (m_watch < 0 || ::ioctl(m_watch, TIOCINQ, &unread) != 0)
        return -1;
    return unread;
}

void PtySupply::closeNow()
{
    m_poll.stop();
    m_writable.reset();
    if (m_watch >= 0)
        ::close(m_watch);
    if (m_master >= 0)
        ::close(m_master);
    m_watch = m_master = -1;
}

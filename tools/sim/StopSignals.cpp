#include "StopSignals.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

int StopSignals::s_pipe[2] = {-1, -1};

StopSignals::StopSignals(QObject *parent)
    : QObject(parent)
{
    if (::pipe2(s_pipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    m_notifier = new QSocketNotifier(s_pipe[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &StopSignals::onReadable);

    struct sigaction action = {};
    action.sa_handler = &StopSignals::handle;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
    // A reader that goes away must not kill the supplies that write to it.
    ::signal(SIGPIPE, SIG_IGN);
}

StopSignals::~StopSignals()
{
    ::signal(SIGINT, SIG_DFL);
    ::signal(SIGTERM, SIG_DFL);
    delete m_notifier;
    for (int &fd : s_pipe) {
        if (fd >= 0)
            ::close(fd);
        fd = -1;
    }
}

void StopSignals::handle(int)
{
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(s_pipe[1], &byte, 1);
}

void StopSignals::onReadable()
{
    char bytes[16];
    while (::read(s_pipe[0], bytes, sizeof bytes) > 0) {
    }
    emit stopRequested();
}

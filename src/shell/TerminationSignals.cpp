#include "TerminationSignals.h"

#include <QSocketNotifier>

#ifdef Q_OS_WIN

#include <QMetaObject>
#include <QPointer>

#include <csignal>
#include <windows.h>

// Windows has no SIGTERM for a console program: Ctrl+C, Ctrl+Break, closing the console
// and the end of the session arrive as console control events, on a thread of their
// own. The handler queues the request to the event loop; for a close or the end of the
// session it then waits a little, because the system ends the process as soon as the
// handler returns.
namespace {

QPointer<TerminationSignals> g_instance;

BOOL WINAPI onConsoleControl(DWORD event)
{
    const int signalNumber = event == CTRL_C_EVENT ? SIGINT : SIGTERM;
    if (TerminationSignals *instance = g_instance.data()) {
        QMetaObject::invokeMethod(
            instance,
            [instance, signalNumber] { emit instance->terminationRequested(signalNumber); },
            Qt::QueuedConnection);
    }
    if (event == CTRL_CLOSE_EVENT || event == CTRL_LOGOFF_EVENT || event == CTRL_SHUTDOWN_EVENT)
        ::Sleep(4000);
    return TRUE;
}

} // namespace

TerminationSignals::TerminationSignals(QObject *parent)
    : QObject(parent)
{
    if (g_instance)
        return;
    g_instance = this;
    // The monitor is a windowed program: started from a console it is not attached to
    // it, and only an attached program receives the console's Ctrl+C and close events.
    ::AttachConsole(ATTACH_PARENT_PROCESS);
    m_active = ::SetConsoleCtrlHandler(onConsoleControl, TRUE) != 0;
}

TerminationSignals::~TerminationSignals()
{
    if (!m_active)
        return;
    ::SetConsoleCtrlHandler(onConsoleControl, FALSE);
    g_instance = nullptr;
}

void TerminationSignals::readSignal() {}

#else

#include <array>
#include <cerrno>
#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// [0] is written by the handler, [1] read by the notifier.
std::array<int, 2> g_signalSockets{-1, -1};
// SIGHUP (the terminal closed, a service manager's reload) ends the run as SIGTERM does:
// a reload would drop what the monitors hold in memory without a save.
constexpr std::array<int, 3> kSignals{SIGINT, SIGTERM, SIGHUP};
std::array<struct sigaction, kSignals.size()> g_previousActions{};

extern "C" void onTerminationSignal(int signalNumber)
{
    const int savedErrno = errno;
    const unsigned char byte = static_cast<unsigned char>(signalNumber);
    // A full socket already holds a pending request; losing this one changes nothing.
    [[maybe_unused]] const ssize_t written = ::write(g_signalSockets[0], &byte, 1);
    errno = savedErrno;
}

} // namespace

TerminationSignals::TerminationSignals(QObject *parent)
    : QObject(parent)
{
    if (g_signalSockets[0] != -1)
        return;
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0,
                     g_signalSockets.data()) != 0) {
        g_signalSockets = {-1, -1};
        return;
    }
    struct sigaction action = {};
    action.sa_handler = onTerminationSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (size_t i = 0; i < kSignals.size(); ++i)
        ::sigaction(kSignals[i], &action, &g_previousActions[i]);

    m_notifier = new QSocketNotifier(g_signalSockets[1], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &TerminationSignals::readSignal);
    m_active = true;
}

TerminationSignals::~TerminationSignals()
{
    if (!m_active)
        return;
    for (size_t i = 0; i < kSignals.size(); ++i)
        ::sigaction(kSignals[i], &g_previousActions[i], nullptr);
    delete m_notifier;
    ::close(g_signalSockets[0]);
    ::close(g_signalSockets[1]);
    g_signalSockets = {-1, -1};
}

void TerminationSignals::readSignal()
{
    unsigned char byte = 0;
    while (::read(g_signalSockets[1], &byte, 1) == 1)
        emit terminationRequested(int(byte));
}

#endif

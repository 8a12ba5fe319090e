#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

// The rules of the equipment link that need no port: how an address text is read, how
// the silence of a link is measured and what the socket states are called.
namespace LinkRules {

// Host and port of a TCP address "IP:" host ":" port. No value when the address has
// fewer than three parts (a host without a port never connects); portValid is false
// when the port text is not a port number.
struct SocketTarget
{
    QString host;
    quint16 port = 0;
    bool portValid = false;
    QString portText;
};
std::optional<SocketTarget> socketTarget(const QString &address);

// Why an address can never connect, in words for the engineer: a TCP address without a
// host or a usable port, a serial address whose settings cannot be read, or an address of
// neither kind. Nothing when it may work (whether the host or port answers is found
// out by trying).
std::optional<QString> addressProblem(const QString &address);

// Whole-minute boundaries crossed from `from` to `to`, as a calendar difference in
// minutes: both times are cut to the minute first, so 10:00:59 to 10:01:00 is one
// minute. An empty `from` counts as the earliest date of all (long ago).
qint64 wholeMinutesBetween(const QDateTime &from, const QDateTime &to);

// The language token of a socket state (0 to 9); other numbers give the "Unknown: "
// token, to which the caller appends the number.
QString socketStateToken(int state);

// What a press of Start/Stop does for a TCP link in the given socket state.
enum class StartStopAction { Start, Stop, Ignore };
StartStopAction startStopAction(int socketState);

} // namespace LinkRules

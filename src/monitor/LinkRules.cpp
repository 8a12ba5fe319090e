#include "LinkRules.h"

#include "platform/SerialAddress.h"
#include "platform/SocketPort.h"

#include <QStringList>

namespace LinkRules {

std::optional<SocketTarget> socketTarget(const QString &address)
{
    const QStringList parts = address.split(u':');
    if (parts.size() < 3)
        return std::nullopt;
    SocketTarget target;
    target.host = parts.at(1);
    target.portText = parts.at(2);
    bool ok = false;
    target.port = target.portText.trimmed().toUShort(&ok);
    target.portValid = ok;
    return target;
}

std::optional<QString> addressProblem(const QString &address)
{
    if (SerialAddress::isSerial(address)) {
        QString why;
        if (SerialAddress::parse(address, &why))
            return std::nullopt;
        return QStringLiteral("The serial settings \"%1\" cannot be used: %2").arg(address, why);
    }
    if (!address.startsWith(QLatin1String("IP:"))) {
        return QStringLiteral("The address \"%1\" is neither IP:host:port nor "
                              "COM:port,baud,parity,data bits,stop bits,flow")
            .arg(address);
    }
    const std::optional<SocketTarget> target = socketTarget(address);
    if (!target || target->portText.trimmed().isEmpty())
        return QStringLiteral("The address \"%1\" has no port").arg(address);
    if (target->host.trimmed().isEmpty())
        return QStringLiteral("The address \"%1\" has no host").arg(address);
    if (!target->portValid || target->port == 0)
        return QStringLiteral("The port of the address \"%1\" is not 1 to 65535").arg(address);
    return std::nullopt;
}

namespace {

// Local date and time read as a plain calendar reading, so that a change of daylight
// saving time between the two moments does not count.
qint64 calendarMinutes(const QDateTime &time)
{
    static const QDateTime kEarliest(QDate(1899, 12, 30), QTime(0, 0), Qt::UTC);
    if (!time.isValid())
        return kEarliest.toSecsSinceEpoch() / 60;
    const QTime clock = time.time();
    const QDateTime reading(time.date(), QTime(clock.hour(), clock.minute()), Qt::UTC);
    return reading.toSecsSinceEpoch() / 60;
}

} // namespace

qint64 wholeMinutesBetween(const QDateTime &from, const QDateTime &to)
{
    return calendarMinutes(to) - calendarMinutes(from);
}

QString socketStateToken(int state)
{
    switch (state) {
    case SocketPort::Closed:
        return QStringLiteral("6045|Closed");
    case SocketPort::Open:
        return QStringLiteral("6046|Opened");
    case SocketPort::Listening:
        return QStringLiteral("6047|Listening...");
    case SocketPort::ConnectionPending:
        return QStringLiteral("6048|Connection Pending...");
    case SocketPort::ResolvingHost:
        return QStringLiteral("6049|Resolving Host...");
    case SocketPort::HostResolved:
        return QStringLiteral("6050|Host Resolved");
    case SocketPort::Connecting:
        return QStringLiteral("6051|Connecting...");
    case SocketPort::Connected:
        return QStringLiteral("6052|Connected");
    case SocketPort::Closing:
        return QStringLiteral("6341|Closing...");
    case SocketPort::Error:
        return QStringLiteral("22|Error");
    default:
        return QStringLiteral("3870|Unknown: ");
    }
}

StartStopAction startStopAction(int socketState)
{
    switch (socketState) {
    case SocketPort::Closed:
    case SocketPort::Closing:
        return StartStopAction::Start;
    case SocketPort::Open:
    case SocketPort::Connecting:
    case SocketPort::Connected:
    case SocketPort::Error:
        return StartStopAction::Stop;
    default:
        return StartStopAction::Ignore;
    }
}

} // namespace LinkRules

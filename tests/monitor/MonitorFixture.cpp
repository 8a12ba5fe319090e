#include "MonitorFixture.h"

#include <QTest>

MonitorFixture::MonitorFixture(bool debugMode, MeasurementSystem system,
                               std::function<std::unique_ptr<SamplingSeam>()> makeSampling,
                               qint64 valueBound, WeldSimulator *shared)
    : eventLog(folder.filePath(QStringLiteral("events.log")), clock)
{
    MonitorServices services{
        .errors = errors,
        .eventLog = eventLog,
        .clock = clock,
        .measurementSystem = system,
        .debugMode = debugMode,
        .makeSocket =
            [this] {
                auto port = std::make_unique<FakeSocketPort>();
                socket = port.get();
                return port;
            },
        .makeSerialPort =
            [this] {
                auto port = std::make_unique<FakeSerialPort>();
                serial = port.get();
                port->refuse = refuseSerialPort;
                return port;
            },
        .simulator = shared ? shared : &simulator,
        .valueBound = valueBound,
        .makeSampling = std::move(makeSampling),
        .messageBoxes = &messages,
    };
    monitor = std::make_unique<EquipmentMonitor>(std::move(services));
}

void MonitorFixture::configure(const QString &address, bool dataLogging)
{
    monitor->Initialize(language, 0);
    monitor->setEquipment(QStringLiteral("Line 4"), address);
    monitor->setDataLogging(dataLogging, dataLogPath());
}

void MonitorFixture::feed(const QByteArray &bytes)
{
    monitor->receiveBytes(bytes);
    monitor->ProcessDataStream();
}

QStringList MonitorFixture::dataLogLines() const
{
    return crlfLines(dataLogPath());
}

QStringList MonitorFixture::eventLogLines() const
{
    return crlfLines(eventLog.path());
}

QStringList crlfLines(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QString text = QString::fromUtf8(file.readAll());
    if (!text.endsWith(QStringLiteral("\r\n")))
        return {QStringLiteral("<not ended by CR LF>"), text};
    text.chop(2);
    return text.split(QStringLiteral("\r\n"));
}

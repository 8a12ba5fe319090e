#pragma once

#include "FakePorts.h"

#include "ManualClock.h"
#include "RecordingErrorReport.h"
#include "RecordingMessageBoxes.h"

#include "monitor/EquipmentMonitor.h"
#include "monitor/WeldSimulator.h"
#include "platform/EventLog.h"

#include <QFile>
#include <QTemporaryDir>

#include <memory>

// One monitor under test with its services: a hand-moved clock, an error report that
// keeps what it is shown, a real event log file in a temporary folder, and fake ports
// that the test reaches through socket and serial once the monitor has made them.
struct MonitorFixture
{
    explicit MonitorFixture(bool debugMode = false,
                            MeasurementSystem system = MeasurementSystem::Metric,
                            std::function<std::unique_ptr<SamplingSeam>()> makeSampling = {},
                            qint64 valueBound = Dataset::kDefaultValueBound,
                            WeldSimulator *shared = nullptr);

    // A monitor with the given address, initialized and loaded.
    void configure(const QString &address = QStringLiteral("IP:127.0.0.1:1000"),
                   bool dataLogging = false);
    // Bytes arrive and the monitor works through its receive buffer.
    void feed(const QByteArray &bytes);

    QString dataLogPath() const { return folder.filePath(QStringLiteral("welds.txt")); }
    QStringList dataLogLines() const;
    QStringList eventLogLines() const;

    QTemporaryDir folder;
    ManualClock clock;
    RecordingErrorReport errors;
    RecordingMessageBoxes messages;
    EventLog eventLog;
    // The simulated values of this monitor unless another fixture's generator is shared.
    WeldSimulator simulator{7};
    qlxLanguage language;
    FakeSocketPort *socket = nullptr;
    FakeSerialPort *serial = nullptr;
    // The serial port that the monitor makes refuses to open (unknown or busy).
    bool refuseSerialPort = false;
    std::unique_ptr<EquipmentMonitor> monitor;
};

// The lines of a text file ended by CR LF; empty when the file is missing.
QStringList crlfLines(const QString &path);

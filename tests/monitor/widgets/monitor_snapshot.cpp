// Renders a monitor's face, fed by a simulated power supply over loopback TCP, into a
// PNG: the picture of the face in the project's documentation, and the way to look at the
// face after a change of its layout.
//
//   monitor_snapshot SIM_PROGRAM OUTPUT.png [WELDS [WIDTH HEIGHT]]
//
// The simulated supply welds every 200 ms; some characteristics get limits so that green,
// yellow and red rows show, others have none.

#include "FixedLimitsSampling.h"

#include "monitor/EquipmentMonitor.h"
#include "monitor/widgets/CorvaneUsw.h"
#include "platform/Clock.h"
#include "platform/EventLog.h"
#include "platform/TcpSocketPort.h"
#include "stats/widgets/WidgetErrorReport.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() < 3) {
        std::fprintf(stderr, "usage: monitor_snapshot SIM_PROGRAM OUTPUT.png [WELDS [W H]]\n");
        return 2;
    }
    const int welds = arguments.size() > 3 ? arguments[3].toInt() : 40;
    const QSize size =
        arguments.size() > 5 ? QSize(arguments[4].toInt(), arguments[5].toInt()) : QSize(960, 620);

    QProcess simulator;
    simulator.start(arguments[1],
                    {QStringLiteral("--tcp"), QStringLiteral("0"), QStringLiteral("--interval"),
                     QStringLiteral("200"), QStringLiteral("--seed"), QStringLiteral("4"),
                     QStringLiteral("--alarm-probability"), QStringLiteral("0.05"),
                     QStringLiteral("--mode"), QStringLiteral("3")});
    if (!simulator.waitForReadyRead(5000)) {
        std::fprintf(stderr, "monitor_snapshot: the simulator did not start\n");
        return 1;
    }
    // "tcp 127.0.0.1:PORT"
    const QString startLine = QString::fromUtf8(simulator.readLine()).trimmed();
    const QString port = startLine.section(u':', -1);

    QTemporaryDir folder;
    SystemClock clock;
    WidgetErrorReport errors;
    EventLog eventLog(folder.filePath(QStringLiteral("events.log")), clock);
    qlxLanguage language;
    FixedLimitsSampling *sampling = nullptr;
    EquipmentMonitor monitor(MonitorServices{
        .errors = errors,
        .eventLog = eventLog,
        .clock = clock,
        .makeSocket = [] { return std::make_unique<TcpSocketPort>(); },
        .makeSampling =
            [&sampling] {
                auto made = std::make_unique<FixedLimitsSampling>();
                sampling = made.get();
                return made;
            },
    });
    sampling->part = QStringLiteral("Filter housing 7-204");
    sampling->limits.insert(1, FixedLimitsSampling::withWarnings(0.20, 0.30, 0.22, 0.28));
    sampling->limits.insert(2, FixedLimitsSampling::withWarnings(100, 140, 104, 116));
    sampling->limits.insert(4, FixedLimitsSampling::specification(0.30, 0.38));
    sampling->limits.insert(7, FixedLimitsSampling::specification(35, 55));
    sampling->limits.insert(8, FixedLimitsSampling::withWarnings(700, 900, 740, 860));

    CorvaneUsw view(monitor, errors);
    view.Initialize(language, 0);
    monitor.setEquipment(QStringLiteral("Line 4"), QStringLiteral("IP:127.0.0.1:") + port);
    for (int row = 0; row < CorvaneUsw::kRowCount; ++row)
        monitor.setRowSelection(row, row + 1);
    view.resize(size);
    view.show();
    monitor.StartStop();

    QDeadlineTimer deadline(welds * 200 + 10000);
    while (monitor.totalWelds() < welds && !deadline.hasExpired())
        QTest::qWait(50);
    QTest::qWait(100);
    const bool saved = view.grab().save(arguments[2]);

    monitor.StartStop();
    simulator.terminate();
    simulator.waitForFinished(3000);
    if (!saved) {
        std::fprintf(stderr, "monitor_snapshot: cannot write %s\n", qPrintable(arguments[2]));
        return 1;
    }
    std::printf("%d welds, %d alarms\n", monitor.totalWelds(), monitor.totalAlarms());
    return 0;
}

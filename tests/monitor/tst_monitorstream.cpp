// The monitor's data path: bytes in through the receive buffer, weld records out into
// the datasets, the alarm list, the counters and the data log.

#include "MonitorFixture.h"
#include "SampleWelds.h"
#include "TestSuites.h"

#include "monitor/SamplingSeam.h"
#include "platform/ProgramError.h"
#include "platform/RegionalFormat.h"
#include "protocol/Function26Frame.h"

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

namespace {

const MeasurementSystem kMetric = MeasurementSystem::Metric;

// A frame followed by the one byte that the frame cutter needs beyond ETX.
QByteArray framesOf(std::initializer_list<CorvaneFUN26> records)
{
    QByteArray bytes;
    for (const CorvaneFUN26 &record : records)
        bytes += Function26Frame::encode(record, kMetric);
    return bytes + QByteArray(1, '\0');
}

// The data-log lines of sample records 1..count as the monitor decodes them at `acquired`.
QStringList logLinesOf(int count, const QDateTime &acquired)
{
    QStringList lines;
    for (int cycle = 1; cycle <= count; ++cycle) {
        CorvaneFUN26 record = SampleWelds::record(cycle);
        record.AcquiredTime = acquired;
        lines << record.Record(RegionalFormat());
    }
    return lines;
}

// A sampling object that is switched on, refuses to start, and records the calls it
// gets with what the monitor shows at that moment.
class RecordingSampling : public NullSampling
{
public:
    RecordingSampling(QStringList &calls, std::function<QString()> state)
        : m_calls(calls)
        , m_state(std::move(state))
    {}
    bool StartCollection(const qlxLanguage &) override
    {
        m_calls.append(QStringLiteral("start"));
        return false;
    }
    void AddToSample(const qlxLanguage &, const CorvaneFUN26 &record) override
    {
        m_calls.append(QStringLiteral("add %1, ").arg(record.CycleCount) + m_state());
    }
    bool Enabled() const override { return true; }

private:
    QStringList &m_calls;
    std::function<QString()> m_state;
};

} // namespace

class tst_MonitorStream : public QObject
{
    Q_OBJECT

private slots:
    void severalRecordsInOneArrival()
    {
        MonitorFixture f;
        f.configure(QStringLiteral("IP:127.0.0.1:1000"), true);
        QSignalSpy welds(f.monitor.get(), &EquipmentMonitor::weldProcessed);
        QSignalSpy refreshes(f.monitor.get(), &EquipmentMonitor::displayRefreshRequested);
        f.feed(SampleWelds::stream(5));
        QCOMPARE(f.monitor->totalWelds(), 5);
        QCOMPARE(welds.size(), 5);
        QCOMPARE(refreshes.size(), 5);
        QCOMPARE(f.monitor->lastWeldTime(), f.clock.now());
        QCOMPARE(f.monitor->currentRecord()->CycleCount, 5);
        // Logging was switched on without a start: no header.
        QCOMPARE(f.dataLogLines(), logLinesOf(5, f.clock.now()));
    }

    void otherFunctionEndsTheArrival()
    {
        MonitorFixture f;
        f.configure();
        const QByteArray other = Function26Frame::encodeFrame(7, QByteArray(10, '\x10'));
        f.feed(framesOf({SampleWelds::record(1)}).chopped(1) + other +
               framesOf({SampleWelds::record(2)}));
        // The other function's frame ends the loop for this arrival ...
        QCOMPARE(f.monitor->totalWelds(), 1);
        // ... and the record queued behind it comes with the next one.
        f.feed(QByteArray(1, '\0'));
        QCOMPARE(f.monitor->totalWelds(), 2);
        QCOMPARE(f.monitor->currentRecord()->CycleCount, 2);
        QVERIFY(f.errors.isEmpty());
    }

    void corruptedFrameIsReportedAndSkipped()
    {
        MonitorFixture f;
        f.configure(QStringLiteral("IP:127.0.0.1:1000"), true);
        QByteArray corrupt = framesOf({SampleWelds::record(1)}).chopped(1);
        corrupt[corrupt.size() - 1] = '\x04'; // ETX replaced
        f.feed(QByteArray("noise") + corrupt + SampleWelds::stream(3));
        QCOMPARE(f.errors.count(), 1);
        QCOMPARE(f.errors.last().location, QStringLiteral("CorvaneUsw.ProcessDataStream"));
        QCOMPARE(f.errors.last().description,
                 QStringLiteral("Unable to resolve End of Transmission"));
        QCOMPARE(f.monitor->totalWelds(), 3);
        QCOMPARE(f.dataLogLines(), logLinesOf(3, f.clock.now()));
    }

    void garbageKeepsTheBufferSmall()
    {
        MonitorFixture f;
        f.configure();
        QByteArray garbage(4096, '\0');
        for (qsizetype i = 0; i < garbage.size(); ++i)
            garbage[i] = char(i % 251 == 0x10 ? 0x11 : i % 251); // never a DLE
        for (int arrival = 0; arrival < 64; ++arrival) {
            f.feed(garbage);
            QVERIFY2(f.monitor->receiveBuffer().size() <= 1, "garbage kept in the receive buffer");
        }
        // A frame after all that garbage still comes through.
        f.feed(SampleWelds::stream(1));
        QCOMPARE(f.monitor->totalWelds(), 1);
        QVERIFY(f.monitor->receiveBuffer().storedBytes() < 64 * 1024);
    }

    void valuesReachTheirDatasets_data()
    {
        QTest::addColumn<MeasurementSystem>("system");
        QTest::addColumn<QString>("distance");
        QTest::addColumn<QString>("force");
        QTest::newRow("metric") << MeasurementSystem::Metric << "mm"
                                << "N";
        QTest::newRow("US") << MeasurementSystem::US << "inches"
                            << "LB";
    }
    void valuesReachTheirDatasets()
    {
        QFETCH(MeasurementSystem, system);
        QFETCH(QString, distance);
        QFETCH(QString, force);
        MonitorFixture f(false, system);
        f.configure();
        f.feed(SampleWelds::stream(2, system));
        const CorvaneFUN26 &r = *f.monitor->currentRecord();
        const DatasetCollection &sets = f.monitor->datasets();
        QCOMPARE(sets.Count(), 8);
        const QList<QPair<QString, double>> expected = {{QStringLiteral("sec"), r.ActualWeldTime},
                                                        {QStringLiteral("joules"), r.TotalEnergy},
                                                        {distance, r.ActualDistance},
                                                        {distance, r.ActualWeldCollapse},
                                                        {distance, r.ActualTotalCollapse},
                                                        {distance, r.ActualVelocity},
                                                        {QStringLiteral("%"), r.PeakPower},
                                                        {force, r.WeldForceEnd}};
        for (qint32 id = 1; id <= 8; ++id) {
            const Dataset &dataset = sets.Item(DatasetCollection::keyFor(id));
            QCOMPARE(sets.at(id - 1).ID, id);
            QCOMPARE(dataset.Unit, expected[id - 1].first);
            QCOMPARE(dataset.Count(), 2);
            QCOMPARE(dataset.LastValue(), expected[id - 1].second);
        }
        QCOMPARE(sets.Item(QStringLiteral("KEY:6")).Name, QStringLiteral("Velocity"));
    }

    // Groups are listed Cycle Modified first and Suspect Part last, each from bit 0 up,
    // every new line goes on top, and bits without a text are not counted.
    void alarmLinesNewestOnTop()
    {
        MonitorFixture f;
        f.configure();
        const auto line = [](int cycle, const AlarmTable &table, int bit) {
            return QStringLiteral("%1: ").arg(cycle) + qlxLanguage().Translate(table[bit]);
        };
        const AlarmTable modified = CorvaneUSWSupport::CycleModifiedAlarmCodes();
        const AlarmTable reject = CorvaneUSWSupport::RejectPartAlarmCodes();
        const AlarmTable suspect = CorvaneUSWSupport::SuspectPartAlarmCodes();
        QVERIFY(reject[0].isEmpty() && reject[31].isEmpty());
        CorvaneFUN26 first = SampleWelds::record(10);
        first.CycleModifiedAlarms = (1 << 1) | (1 << 3);
        first.RejectPartAlarms = (1 << 1) | (1 << 2);
        first.SuspectPartAlarms = 1 << 1;
        CorvaneFUN26 second = SampleWelds::record(11);
        second.CycleModifiedAlarms = 0;
        second.RejectPartAlarms = qint32(0x80000005u); // bits 0 and 31 have no text
        f.feed(framesOf({first, second}));

        const QStringList expected = {line(11, reject, 2),   line(10, suspect, 1),
                                      line(10, reject, 2),   line(10, reject, 1),
                                      line(10, modified, 3), line(10, modified, 1)};
        QCOMPARE(f.monitor->totalAlarms(), 6);
        QCOMPARE(f.monitor->alarmsText(), expected.join(QStringLiteral("\r\n")) + "\r\n");
        QCOMPARE(f.monitor->alarms().line(5), expected.last());

        // A new collection starts with an empty list.
        f.monitor->StartDataCollection();
        QCOMPARE(f.monitor->totalAlarms(), 0);
        QCOMPARE(f.monitor->alarmsText(), QString());
    }

    void debugModeSimulatesValues()
    {
        CorvaneFUN26 sent = SampleWelds::record(40);
        sent.TotalEnergy = 0;
        sent.SetAmplitudeB = 0;
        MonitorFixture f(true);
        f.configure(QStringLiteral("IP:127.0.0.1:1000"), true);
        f.feed(framesOf({sent, sent}));
        QCOMPARE(f.monitor->totalWelds(), 2);

        const CorvaneFUN26 &shown = *f.monitor->currentRecord();
        QCOMPARE(shown.CycleCount, 1); // the welds counted before this one
        QCOMPARE(shown.TotalEnergy, 0.0);
        QCOMPARE(shown.SetAmplitudeB, 0);
        QVERIFY(shown.ActualWeldTime != sent.ActualWeldTime);
        QVERIFY(qAbs(shown.ActualWeldTime - sent.ActualWeldTime) <= 0.1 * sent.ActualWeldTime);
        // The simulated values are the ones the datasets and the data log get.
        const Dataset &weldTime = f.monitor->datasets().Item(QStringLiteral("KEY:1"));
        QCOMPARE(weldTime.LastValue(), shown.ActualWeldTime);
        QVERIFY(weldTime.GetValue(1) != weldTime.GetValue(2));
        QCOMPARE(f.dataLogLines().last(), shown.Record(RegionalFormat()));
        for (int i = 0; i < 100; ++i)
            QVERIFY(qAbs(f.monitor->RandomizeDouble(50.0) - 50.0) <= 5.0);
        QCOMPARE(f.monitor->RandomizeDouble(0.0), 0.0);
    }

    void dataLogHeaderOnlyForMissingOrEmptyFile()
    {
        MonitorFixture f;
        f.configure(QStringLiteral("IP:127.0.0.1:1000"), true);
        const QString header = CorvaneFUN26::HeaderRecord(f.language);
        const auto restart = [&] {
            f.monitor->StopDataCollection();
            f.monitor->StartDataCollection();
        };
        f.monitor->StartDataCollection();
        QCOMPARE(f.dataLogLines(), QStringList{header});
        f.feed(SampleWelds::stream(2));
        restart(); // the file has data: no second header
        f.feed(SampleWelds::stream(1));
        QCOMPARE(f.dataLogLines(),
                 QStringList{header} + logLinesOf(2, f.clock.now()) + logLinesOf(1, f.clock.now()));

        QFile empty(f.dataLogPath());
        QVERIFY(empty.open(QIODevice::WriteOnly | QIODevice::Truncate));
        empty.close();
        restart();
        QCOMPARE(f.dataLogLines(), QStringList{header});

        // Logging switched off writes nothing at all.
        QVERIFY(QFile::remove(f.dataLogPath()));
        f.monitor->setDataLogging(false, f.dataLogPath());
        restart();
        f.feed(SampleWelds::stream(1));
        QVERIFY(!QFile::exists(f.dataLogPath()));
    }

    void unwritableDataLogCostsOneEventLinePerWeld()
    {
        MonitorFixture f;
        f.configure();
        const QString path = f.folder.filePath(QStringLiteral("missing/folder/welds.txt"));
        f.monitor->setDataLogging(true, path);
        f.feed(SampleWelds::stream(3));
        QCOMPARE(f.monitor->totalWelds(), 3);
        QVERIFY(f.errors.isEmpty());
        const QStringList events = f.eventLogLines();
        QCOMPARE(events.size(), 3);
        for (const QString &event : events) {
            const QStringList fields = event.split(u'\t');
            QCOMPARE(fields.size(), 6);
            QVERIFY(!fields.at(4).isEmpty());
            QCOMPARE(fields.mid(1, 3) << fields.at(5),
                     (QStringList{"Main", "Data Log Open",
                                  QString::number(ProgramError::kPathNotFound), path}));
        }
    }

    // Within one weld the count and the display come first, then the data-log line, then
    // sampling; a refused sampling start leaves the monitor, its link and its data log as
    // they were.
    void oneWeldInOrderAndARefusedSamplingStart()
    {
        QStringList calls;
        MonitorFixture *fixture = nullptr;
        const auto state = [&] {
            return QStringLiteral("%1 welds, %2 lines")
                .arg(fixture->monitor->totalWelds())
                .arg(fixture->dataLogLines().size());
        };
        MonitorFixture f(false, kMetric,
                         [&] { return std::make_unique<RecordingSampling>(calls, state); });
        fixture = &f;
        f.configure(QStringLiteral("IP:127.0.0.1:1000"), true);
        connect(f.monitor.get(), &EquipmentMonitor::displayRefreshRequested, this,
                [&] { calls.append(QStringLiteral("refresh, ") + state()); });
        f.feed(SampleWelds::stream(3));
        QCOMPARE(calls, (QStringList{"refresh, 1 welds, 0 lines", "add 1, 1 welds, 1 lines",
                                     "refresh, 2 welds, 1 lines", "add 2, 2 welds, 2 lines",
                                     "refresh, 3 welds, 2 lines", "add 3, 3 welds, 3 lines"}));
        const QString caption = f.monitor->startStopCaption();
        f.monitor->StartStop();
        QVERIFY(calls.contains(QStringLiteral("start")));
        QCOMPARE(f.monitor->startStopCaption(), caption);
        QCOMPARE(f.monitor->totalWelds(), 3);
        QCOMPARE(f.monitor->totalAlarms(), 2);
        QCOMPARE(f.socket, nullptr); // the link was never touched
        QVERIFY(f.monitor->displayItemsEnabled());
        QCOMPARE(f.dataLogLines().size(), 3); // and no header was written
    }

    // A power supply that floods its link must not keep the event loop to itself: the
    // sampling timer and the window get their turn between slices of the arrival, and
    // every record still arrives.
    void floodLeavesTheEventLoopItsTurn()
    {
        MonitorFixture f;
        f.configure();
        constexpr int kWelds = 5000;
        int weldsWhenTimerRan = -1;
        QTimer::singleShot(0, f.monitor.get(),
                           [&] { weldsWhenTimerRan = f.monitor->totalWelds(); });
        f.monitor->Winsock1_DataArrival(SampleWelds::stream(kWelds));
        QTRY_COMPARE(f.monitor->totalWelds(), kWelds);
        QVERIFY2(weldsWhenTimerRan >= 0 && weldsWhenTimerRan < kWelds,
                 qPrintable(QString::number(weldsWhenTimerRan)));
    }
};

CORVANE_TEST_SUITE(tst_MonitorStream)
#include "tst_monitorstream.moc"

// The monitor's data path: bytes in through the receive buffer, weld records out into
// the datasets, the alarm list, the counters and the data log.

#include "MonitorFixture.h"
#include "SampleWelds.h"

#include "monitor/SamplingSeam.h"
#include "platform/ProgramError.h"
#include "platform/RegionalFormat.h"
#include "protocol/Function26Frame.h"

#include <QSignalSpy>
#include <QTest>

namespace {

const MeasurementSystem kMetric = MeasurementSystem::Metric;

QByteArray frameOf(const CorvaneFUN26 &record)
{
    return Function26Frame::encode(record, kMetric);
}

QString logLineOf(const CorvaneFUN26 &record)
{
    return record.Record(RegionalFormat());
}

// The data-log line of a sample record as the monitor decodes it at `acquired`.
QString logLineOf(qint32 cycle, const QDateTime &acquired)
{
    CorvaneFUN26 record = SampleWelds::record(cycle);
    record.AcquiredTime = acquired;
    return logLineOf(record);
}

// A sampling object that records the calls it gets.
class RecordingSampling : public NullSampling
{
public:
    explicit RecordingSampling(QStringList &calls, bool enabled = false, bool startAccepted = true)
        : m_calls(calls)
        , m_enabled(enabled)
        , m_startAccepted(startAccepted)
    {}
    bool StartCollection(const qlxLanguage &) override
    {
        m_calls.append(QStringLiteral("start"));
        return m_startAccepted;
    }
    void AddToSample(const qlxLanguage &, const CorvaneFUN26 &record) override
    {
        m_calls.append(QStringLiteral("add %1").arg(record.CycleCount));
    }
    bool Enabled() const override { return m_enabled; }

private:
    QStringList &m_calls;
    bool m_enabled;
    bool m_startAccepted;
};

} // namespace

class tst_MonitorStream : public QObject
{
    Q_OBJECT

private slots:
    void recordSplitAtEveryByteBoundary();
    void severalRecordsInOneArrival();
    void otherFunctionEndsTheArrival();
    void corruptedFrameIsReportedAndSkipped();
    void garbageKeepsTheBufferSmall();
    void valuesReachTheirDatasets_data();
    void valuesReachTheirDatasets();
    void alarmLinesNewestOnTop();
    void alarmBitsWithoutTextAreNotCounted();
    void debugModeSimulatesValues();
    void debugModeOffPassesRecordsThrough();
    void dataLogHeaderOnlyForMissingOrEmptyFile();
    void unwritableDataLogCostsOneEventLinePerWeld();
    void samplingGetsEveryRecordInOrder();
    void refusedSamplingStartChangesNothing();
};

void tst_MonitorStream::recordSplitAtEveryByteBoundary()
{
    const CorvaneFUN26 sent = SampleWelds::record(12);
    const QByteArray frame = frameOf(sent) + QByteArray(1, '\0');
    for (qsizetype cut = 1; cut < frame.size(); ++cut) {
        MonitorFixture f;
        f.configure(QStringLiteral("IP:127.0.0.1:1000"));
        f.monitor->receiveBytes(frame.first(cut));
        f.monitor->ProcessDataStream();
        QCOMPARE(f.monitor->totalWelds(), 0);
        f.monitor->receiveBytes(frame.sliced(cut));
        f.monitor->ProcessDataStream();
        QCOMPARE(f.monitor->totalWelds(), 1);
        CorvaneFUN26 expected = sent;
        expected.AcquiredTime = f.monitor->currentRecord()->AcquiredTime;
        QCOMPARE(*f.monitor->currentRecord(), expected);
        QVERIFY(f.errors.isEmpty());
    }
}

void tst_MonitorStream::severalRecordsInOneArrival()
{
    MonitorFixture f;
    f.configure(QStringLiteral("IP:127.0.0.1:1000"), true);
    QSignalSpy welds(f.monitor.get(), &EquipmentMonitor::weldProcessed);
    QSignalSpy refreshes(f.monitor.get(), &EquipmentMonitor::displayRefreshRequested);

    f.monitor->receiveBytes(SampleWelds::stream(5));
    f.monitor->ProcessDataStream();

    QCOMPARE(f.monitor->totalWelds(), 5);
    QCOMPARE(welds.size(), 5);
    QCOMPARE(refreshes.size(), 5);
    QCOMPARE(f.monitor->lastWeldTime(), f.clock.now());
    QCOMPARE(f.monitor->currentRecord()->CycleCount, 5);
    const QStringList lines = f.dataLogLines();
    QCOMPARE(lines.size(), 5); // logging was switched on without a start: no header
    for (int cycle = 1; cycle <= 5; ++cycle)
        QCOMPARE(lines.at(cycle - 1), logLineOf(cycle, f.clock.now()));
}

void tst_MonitorStream::otherFunctionEndsTheArrival()
{
    MonitorFixture f;
    f.configure(QStringLiteral("IP:127.0.0.1:1000"));
    const QByteArray other = Function26Frame::encodeFrame(7, QByteArray(10, '\x10'));
    f.monitor->receiveBytes(frameOf(SampleWelds::record(1)) + other +
                            frameOf(SampleWelds::record(2)) + QByteArray(1, '\0'));
    f.monitor->ProcessDataStream();
    // The other function's frame ends the loop for this arrival ...
    QCOMPARE(f.monitor->totalWelds(), 1);
    // ... and the record queued behind it comes with the next one.
    f.monitor->receiveBytes(QByteArray(1, '\0'));
    f.monitor->ProcessDataStream();
    QCOMPARE(f.monitor->totalWelds(), 2);
    QCOMPARE(f.monitor->currentRecord()->CycleCount, 2);
    QVERIFY(f.errors.isEmpty());
}

void tst_MonitorStream::corruptedFrameIsReportedAndSkipped()
{
    MonitorFixture f;
    f.configure(QStringLiteral("IP:127.0.0.1:1000"), true);
    QByteArray corrupt = frameOf(SampleWelds::record(1));
    corrupt[corrupt.size() - 1] = '\x04'; // ETX replaced
    f.monitor->receiveBytes(QByteArray("noise") + corrupt + SampleWelds::stream(3));
    f.monitor->ProcessDataStream();

    QCOMPARE(f.errors.count(), 1);
    QCOMPARE(f.errors.last().location, QStringLiteral("CorvaneUsw.ProcessDataStream"));
    QCOMPARE(f.errors.last().description, QStringLiteral("Unable to resolve End of Transmission"));
    QCOMPARE(f.monitor->totalWelds(), 3);
    const QStringList lines = f.dataLogLines();
    QCOMPARE(lines.size(), 3);
    for (int cycle = 1; cycle <= 3; ++cycle)
        QCOMPARE(lines.at(cycle - 1), logLineOf(cycle, f.clock.now()));
}

void tst_MonitorStream::garbageKeepsTheBufferSmall()
{
    MonitorFixture f;
    f.configure(QStringLiteral("IP:127.0.0.1:1000"));
    QByteArray garbage(4096, '\0');
    for (qsizetype i = 0; i < garbage.size(); ++i)
        garbage[i] = char(i % 251 == 0x10 ? 0x11 : i % 251); // never a DLE
    for (int arrival = 0; arrival < 256; ++arrival) {
        f.monitor->receiveBytes(garbage);
        f.monitor->ProcessDataStream();
        QVERIFY2(f.monitor->receiveBuffer().size() <= 1, "garbage kept in the receive buffer");
    }
    // A frame after a megabyte of garbage still comes through.
    f.monitor->receiveBytes(SampleWelds::stream(1));
    f.monitor->ProcessDataStream();
    QCOMPARE(f.monitor->totalWelds(), 1);
    QVERIFY(f.monitor->receiveBuffer().storedBytes() < 64 * 1024);
}

void tst_MonitorStream::valuesReachTheirDatasets_data()
{
    QTest::addColumn<MeasurementSystem>("system");
    QTest::addColumn<QString>("distanceUnit");
    QTest::addColumn<QString>("forceUnit");
    QTest::newRow("metric") << MeasurementSystem::Metric << "mm"
                            << "N";
    QTest::newRow("US") << MeasurementSystem::US << "inches"
                        << "LB";
}

void tst_MonitorStream::valuesReachTheirDatasets()
{
    QFETCH(MeasurementSystem, system);
    QFETCH(QString, distanceUnit);
    QFETCH(QString, forceUnit);
    MonitorFixture f(false, system);
    f.configure(QStringLiteral("IP:127.0.0.1:1000"));
    f.monitor->receiveBytes(SampleWelds::stream(2, system));
    f.monitor->ProcessDataStream();

    const CorvaneFUN26 &r = *f.monitor->currentRecord();
    const DatasetCollection &sets = f.monitor->datasets();
    QCOMPARE(sets.Count(), 8);
    const QList<QPair<QString, double>> expected = {
        {QStringLiteral("sec"), r.ActualWeldTime}, {QStringLiteral("joules"), r.TotalEnergy},
        {distanceUnit, r.ActualDistance},          {distanceUnit, r.ActualWeldCollapse},
        {distanceUnit, r.ActualTotalCollapse},     {distanceUnit, r.ActualVelocity},
        {QStringLiteral("%"), r.PeakPower},        {forceUnit, r.WeldForceEnd}};
    for (qint32 id = 1; id <= 8; ++id) {
        const Dataset &dataset = sets.Item(DatasetCollection::keyFor(id));
        QCOMPARE(sets.at(id - 1).ID, id);
        QCOMPARE(dataset.Unit, expected[id - 1].first);
        QCOMPARE(dataset.Count(), 2);
        QCOMPARE(dataset.LastValue(), expected[id - 1].second);
    }
    QCOMPARE(sets.Item(QStringLiteral("KEY:1")).Name, QStringLiteral("Weld Time"));
    QCOMPARE(sets.Item(QStringLiteral("KEY:6")).Name, QStringLiteral("Velocity"));
}

void tst_MonitorStream::alarmLinesNewestOnTop()
{
    MonitorFixture f;
    f.configure(QStringLiteral("IP:127.0.0.1:1000"));
    const auto text = [](const QString &token) { return qlxLanguage().Translate(token); };
    const AlarmTable modified = CorvaneUSWSupport::CycleModifiedAlarmCodes();
    const AlarmTable reject = CorvaneUSWSupport::RejectPartAlarmCodes();
    const AlarmTable suspect = CorvaneUSWSupport::SuspectPartAlarmCodes();
    QVERIFY(text(modified[1]) != text(modified[3]) && text(reject[1]) != text(reject[2]));
    QVERIFY(!suspect[1].isEmpty());

    // Groups are listed Cycle Modified first and Suspect Part last, each from bit 0 up,
    // and every new line goes on top.
    CorvaneFUN26 first = SampleWelds::record(10);
    first.CycleModifiedAlarms = (1 << 1) | (1 << 3);
    first.RejectPartAlarms = (1 << 1) | (1 << 2);
    first.SuspectPartAlarms = 1 << 1;
    CorvaneFUN26 second = SampleWelds::record(11);
    second.CycleModifiedAlarms = 0;
    second.RejectPartAlarms = 1 << 2;
    f.monitor->receiveBytes(frameOf(first) + frameOf(second) + QByteArray(1, '\0'));
    f.monitor->ProcessDataStream();

    const QStringList expected = {
        QStringLiteral("11: ") + text(reject[2]),   QStringLiteral("10: ") + text(suspect[1]),
        QStringLiteral("10: ") + text(reject[2]),   QStringLiteral("10: ") + text(reject[1]),
        QStringLiteral("10: ") + text(modified[3]), QStringLiteral("10: ") + text(modified[1]),
    };
    QCOMPARE(f.monitor->totalAlarms(), 6);
    QCOMPARE(f.monitor->alarmsText(),
             expected.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n"));
    QCOMPARE(f.monitor->alarms().line(0), expected.first());
    QCOMPARE(f.monitor->alarms().line(5), expected.last());

    // A new collection starts with an empty list.
    f.monitor->StartDataCollection();
    QCOMPARE(f.monitor->totalAlarms(), 0);
    QCOMPARE(f.monitor->alarmsText(), QString());
}

void tst_MonitorStream::alarmBitsWithoutTextAreNotCounted()
{
    MonitorFixture f;
    f.configure(QStringLiteral("IP:127.0.0.1:1000"));
    CorvaneFUN26 record = SampleWelds::record(1);
    const AlarmTable reject = CorvaneUSWSupport::RejectPartAlarmCodes();
    QVERIFY(reject[0].isEmpty() && reject[31].isEmpty() && !reject[2].isEmpty());
    record.RejectPartAlarms = qint32(0x80000001u); // bits 0 and 31: no texts
    f.monitor->receiveBytes(frameOf(record) + QByteArray(1, '\0'));
    f.monitor->ProcessDataStream();
    QCOMPARE(f.monitor->totalWelds(), 1);
    QCOMPARE(f.monitor->totalAlarms(), 0);
    QCOMPARE(f.monitor->alarmsText(), QString());

    record.RejectPartAlarms = qint32(0x80000005u); // and bit 2, which has one
    f.monitor->receiveBytes(frameOf(record) + QByteArray(1, '\0'));
    f.monitor->ProcessDataStream();
    QCOMPARE(f.monitor->totalAlarms(), 1);
    QCOMPARE(f.monitor->alarms().line(0),
             QStringLiteral("1: ") + qlxLanguage().Translate(reject[2]));
}

void tst_MonitorStream::debugModeSimulatesValues()
{
    MonitorFixture f(true);
    f.configure(QStringLiteral("IP:127.0.0.1:1000"), true);
    CorvaneFUN26 sent = SampleWelds::record(40);
    sent.TotalEnergy = 0;
    sent.SetAmplitudeB = 0;
    f.monitor->receiveBytes(frameOf(sent) + frameOf(sent) + QByteArray(1, '\0'));
    f.monitor->ProcessDataStream();
    QCOMPARE(f.monitor->totalWelds(), 2);

    const CorvaneFUN26 &shown = *f.monitor->currentRecord();
    QCOMPARE(shown.CycleCount, 1); // the welds counted before this one
    QCOMPARE(shown.TotalEnergy, 0.0);
    QCOMPARE(shown.SetAmplitudeB, 0);
    QVERIFY(shown.ActualWeldTime != sent.ActualWeldTime);
    QVERIFY(qAbs(shown.ActualWeldTime - sent.ActualWeldTime) <= 0.1 * sent.ActualWeldTime);
    QVERIFY(qAbs(shown.ActualStartFrequency - sent.ActualStartFrequency) <=
            sent.ActualStartFrequency / 10 + 1);
    // The simulated values are the ones the datasets and the data log get.
    const Dataset &weldTime = f.monitor->datasets().Item(QStringLiteral("KEY:1"));
    QCOMPARE(weldTime.LastValue(), shown.ActualWeldTime);
    QVERIFY(weldTime.GetValue(1) != weldTime.GetValue(2));
    QCOMPARE(f.dataLogLines().last(), logLineOf(shown));

    // The same start gives the same sequence.
    MonitorFixture again(true);
    again.configure(QStringLiteral("IP:127.0.0.1:1000"));
    again.monitor->receiveBytes(frameOf(sent) + frameOf(sent) + QByteArray(1, '\0'));
    again.monitor->ProcessDataStream();
    QCOMPARE(again.monitor->currentRecord()->ActualWeldTime, shown.ActualWeldTime);

    for (int i = 0; i < 1000; ++i) {
        const double value = f.monitor->RandomizeDouble(50.0);
        QVERIFY(value >= 45.0 && value < 55.0);
    }
    QCOMPARE(f.monitor->RandomizeDouble(0.0), 0.0);
}

void tst_MonitorStream::debugModeOffPassesRecordsThrough()
{
    MonitorFixture f(false);
    f.configure(QStringLiteral("IP:127.0.0.1:1000"));
    const CorvaneFUN26 sent = SampleWelds::record(3);
    f.monitor->receiveBytes(frameOf(sent) + QByteArray(1, '\0'));
    f.monitor->ProcessDataStream();
    CorvaneFUN26 expected = sent;
    expected.AcquiredTime = f.monitor->currentRecord()->AcquiredTime;
    QCOMPARE(*f.monitor->currentRecord(), expected);
}

void tst_MonitorStream::dataLogHeaderOnlyForMissingOrEmptyFile()
{
    MonitorFixture f;
    f.configure(QStringLiteral("IP:127.0.0.1:1000"), true);
    const QString header = CorvaneFUN26::HeaderRecord(f.language);

    f.monitor->StartDataCollection();
    QCOMPARE(f.dataLogLines(), QStringList{header});
    f.monitor->receiveBytes(SampleWelds::stream(2));
    f.monitor->ProcessDataStream();
    f.monitor->StopDataCollection();

    f.monitor->StartDataCollection(); // the file has data: no second header
    f.monitor->receiveBytes(SampleWelds::stream(1));
    f.monitor->ProcessDataStream();
    const QStringList lines = f.dataLogLines();
    QCOMPARE(lines.size(), 4);
    QCOMPARE(lines.count(header), 1);
    QCOMPARE(lines.first(), header);

    QFile empty(f.dataLogPath());
    QVERIFY(empty.open(QIODevice::WriteOnly | QIODevice::Truncate));
    empty.close();
    f.monitor->StopDataCollection();
    f.monitor->StartDataCollection();
    QCOMPARE(f.dataLogLines(), QStringList{header});

    // Logging switched off writes nothing at all.
    QVERIFY(QFile::remove(f.dataLogPath()));
    f.monitor->setDataLogging(false, f.dataLogPath());
    f.monitor->StopDataCollection();
    f.monitor->StartDataCollection();
    f.monitor->receiveBytes(SampleWelds::stream(1));
    f.monitor->ProcessDataStream();
    QVERIFY(!QFile::exists(f.dataLogPath()));
}

void tst_MonitorStream::unwritableDataLogCostsOneEventLinePerWeld()
{
    MonitorFixture f;
    f.configure(QStringLiteral("IP:127.0.0.1:1000"));
    const QString path = f.folder.filePath(QStringLiteral("missing/folder/welds.txt"));
    f.monitor->setDataLogging(true, path);
    f.monitor->receiveBytes(SampleWelds::stream(3));
    f.monitor->ProcessDataStream();

    QCOMPARE(f.monitor->totalWelds(), 3);
    QVERIFY(f.errors.isEmpty());
    const QStringList events = f.eventLogLines();
    QCOMPARE(events.size(), 3);
    for (const QString &event : events) {
        const QStringList fields = event.split(u'\t');
        QCOMPARE(fields.size(), 6);
        QCOMPARE(fields.at(1), QStringLiteral("Main"));
        QCOMPARE(fields.at(2), QStringLiteral("Data Log Open"));
        QCOMPARE(fields.at(3).toInt(), ProgramError::kPathNotFound);
        QVERIFY(!fields.at(4).isEmpty());
        QCOMPARE(fields.at(5), path);
    }
}

void tst_MonitorStream::samplingGetsEveryRecordInOrder()
{
    QStringList calls;
    MonitorFixture f(false, kMetric, [&] { return std::make_unique<RecordingSampling>(calls); });
    f.configure(QStringLiteral("IP:127.0.0.1:1000"));
    f.monitor->receiveBytes(SampleWelds::stream(3));
    f.monitor->ProcessDataStream();
    QCOMPARE(calls, (QStringList{"add 1", "add 2", "add 3"}));
}

void tst_MonitorStream::refusedSamplingStartChangesNothing()
{
    QStringList calls;
    MonitorFixture f(false, kMetric,
                     [&] { return std::make_unique<RecordingSampling>(calls, true, false); });
    f.configure(QStringLiteral("IP:127.0.0.1:1000"), true);
    f.monitor->receiveBytes(SampleWelds::stream(3));
    f.monitor->ProcessDataStream();
    const QString caption = f.monitor->startStopCaption();

    f.monitor->StartStop();

    QCOMPARE(calls.last(), QStringLiteral("start"));
    QCOMPARE(f.monitor->startStopCaption(), caption);
    QCOMPARE(f.monitor->totalWelds(), 3);
    QCOMPARE(f.monitor->totalAlarms(), 2);
    QCOMPARE(f.socket, nullptr); // the link was never touched
    QVERIFY(f.monitor->displayItemsEnabled());
    QCOMPARE(f.dataLogLines().size(), 3); // and no header was written
}

QTEST_GUILESS_MAIN(tst_MonitorStream)
#include "tst_monitorstream.moc"

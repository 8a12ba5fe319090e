#include "SampleWelds.h"

#include "platform/RegionalFormat.h"
#include "platform/qlxLanguage.h"
#include "protocol/CorvaneFUN26.h"
#include "protocol/Function26Frame.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

struct Run
{
    int exitCode = -1;
    QByteArray out;
    QByteArray err;

    QList<QByteArray> errLines() const { return err.trimmed().split('\n'); }
};

// The data-log line of a sample weld as a C-locale run of the program writes it, less
// the first column: the time of decoding, which differs from run to run.
QString expectedLine(qint32 cycle, MeasurementSystem system = MeasurementSystem::Metric)
{
    const QString line = SampleWelds::record(cycle, system).Record(RegionalFormat(QLocale::c()));
    return line.section(u'\t', 1);
}

QByteArray frame(qint32 cycle, MeasurementSystem system = MeasurementSystem::Metric)
{
    return Function26Frame::encode(SampleWelds::record(cycle, system), system);
}

// Frames of the given cycles, back to back with nothing in between.
QByteArray frames(std::initializer_list<qint32> cycles)
{
    QByteArray out;
    for (qint32 cycle : cycles)
        out += frame(cycle);
    return out;
}

} // namespace

// corvane-decode as a user runs it: a capture file or standard input in, the data-log
// header and one CR LF line per weld out, problems on standard error, and an exit
// status that says whether the capture was clean.
class TestDecode : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    QString m_emptyDataFolder;

    QProcessEnvironment environment(const QString &locale = QStringLiteral("C.UTF-8")) const
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("LC_ALL"), locale);
        env.insert(QStringLiteral("CORVANE_DATA_DIR"), m_emptyDataFolder);
        return env;
    }

    Run decode(const QStringList &arguments, const QByteArray *input = nullptr,
               const QProcessEnvironment &env = {}) const
    {
        QProcess process;
        process.setProcessEnvironment(env.isEmpty() ? environment() : env);
        process.start(QStringLiteral(CORVANE_DECODE_PATH), arguments);
        Run run;
        if (!process.waitForStarted(10000))
            return run;
        if (input)
            process.write(*input);
        process.closeWriteChannel();
        if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit) {
            process.kill();
            process.waitForFinished();
            return run;
        }
        run.exitCode = process.exitCode();
        run.out = process.readAllStandardOutput();
        run.err = process.readAllStandardError();
        return run;
    }

    Run decodeFile(const QByteArray &capture, QStringList arguments = {},
                   const QProcessEnvironment &env = {}) const
    {
        const QString path = m_folder.filePath(QStringLiteral("capture.bin"));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            qFatal("cannot write the capture");
        file.write(capture);
        file.close();
        return decode(arguments << path, nullptr, env);
    }

    // The output's data lines without their time column; fails on a line not ended by
    // CR LF or a header that is not the data log's.
    static QStringList records(const Run &run)
    {
        QStringList lines = QString::fromUtf8(run.out).split(QStringLiteral("\r\n"));
        if (lines.isEmpty() || !lines.constLast().isEmpty())
            return {QStringLiteral("<output not ended by CR LF>")};
        lines.removeLast();
        if (lines.isEmpty() || lines.takeFirst() != CorvaneFUN26::HeaderRecord(qlxLanguage()))
            return {QStringLiteral("<no data log header>")};
        QStringList result;
        for (const QString &line : lines) {
            if (line.contains(u'\n') || line.contains(u'\r'))
                return {QStringLiteral("<line break inside a line>")};
            if (line.section(u'\t', 0, 0).isEmpty())
                return {QStringLiteral("<no time of decoding>")};
            result << line.section(u'\t', 1);
        }
        return result;
    }

    static QStringList expected(std::initializer_list<qint32> cycles)
    {
        QStringList lines;
        for (qint32 cycle : cycles)
            lines << expectedLine(cycle);
        return lines;
    }

    static QString column(const QString &record, int index)
    {
        // records() has removed column 0.
        return record.section(u'\t', index - 1, index - 1);
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_folder.isValid());
        m_emptyDataFolder = m_folder.filePath(QStringLiteral("no-preferences"));
        QVERIFY(QDir().mkpath(m_emptyDataFolder));
        QVERIFY(QFile::exists(QStringLiteral(CORVANE_DECODE_PATH)));
    }

    void fileAndStandardInputAgree()
    {
        const QByteArray capture = SampleWelds::stream(5);
        const Run fromFile = decodeFile(capture);
        QCOMPARE(fromFile.exitCode, 0);
        QCOMPARE(fromFile.err, QByteArray());
        QCOMPARE(records(fromFile), expected({1, 2, 3, 4, 5}));

        const Run fromInput = decode({}, &capture);
        QCOMPARE(fromInput.exitCode, 0);
        QCOMPARE(fromInput.err, QByteArray());
        QCOMPARE(records(fromInput), records(fromFile));
    }

    void emptyCaptureGivesTheHeaderOnly()
    {
        const QByteArray nothing;
        const Run run = decode({}, &nothing);
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(records(run), QStringList());
    }

    // How the bytes are cut into pieces must not change a single line.
    void pieceSizeDoesNotMatter_data()
    {
        QTest::addColumn<QString>("chunk");
        for (const char *size : {"1", "7", "123", "124", "125", "4096"})
            QTest::newRow(size) << QString::fromLatin1(size);
    }

    void pieceSizeDoesNotMatter()
    {
        QFETCH(QString, chunk);
        const QByteArray capture = QByteArray("\x33\x10\x10\x03", 4) + frames({1, 2}) +
                                   Function26Frame::encodeFrame(5, QByteArray("\xAB\xCD", 2)) +
                                   QByteArray(3, '\x10') + frames({3}) + QByteArray(1, '\x7E') +
                                   Function26Frame::encodeFrame(40, QByteArray(200, '\x02')) +
                                   frames({4, 5});
        const Run run = decodeFile(capture, {QStringLiteral("--chunk"), chunk});
        QCOMPARE(run.err, QByteArray());
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(records(run), expected({1, 2, 3, 4, 5}));
    }

    // A corrupted frame is reported and skipped; the frames behind it still count.
    void corruptedFrameInTheMiddle_data()
    {
        QTest::addColumn<QString>("chunk");
        QTest::addColumn<int>("corrupt");
        QTest::newRow("ETX, whole") << "4096" << 123;
        QTest::newRow("ETX, bytewise") << "1" << 123;
        QTest::newRow("DLE, whole") << "4096" << 122;
        QTest::newRow("DLE, pieces") << "13" << 122;
    }

    void corruptedFrameInTheMiddle()
    {
        QFETCH(QString, chunk);
        QFETCH(int, corrupt);
        QByteArray bad = frame(3);
        // Resynchronising looks for the next DLE STX; the bad frame must hold none
        // inside, or the case would test something else.
        QVERIFY(!bad.sliced(1).contains(QByteArray("\x10\x02", 2)));
        bad[corrupt] = '\x55';
        const QByteArray capture = frames({1, 2}) + bad + frames({4, 5});
        const Run run = decodeFile(capture, {QStringLiteral("--chunk"), chunk});
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(records(run), expected({1, 2, 4, 5}));
        QCOMPARE(run.errLines().size(), 1);
        QVERIFY2(run.err.contains("Unable to resolve End of Transmission"), run.err.constData());
        QVERIFY2(run.err.contains("byte 248"), run.err.constData());
    }

    // A capture that ends inside a frame, or a false frame start that never completes,
    // is reported once; every whole weld in front of and behind it still comes out.
    void incompleteFrameIsReported_data()
    {
        QTest::addColumn<QByteArray>("capture");
        QTest::addColumn<QList<int>>("cycles");
        QTest::newRow("frame start only")
            << frames({1, 2, 3}) + frame(4).first(2) << QList{1, 2, 3};
        QTest::newRow("half a frame") << frames({1, 2, 3}) + frame(4).first(60) << QList{1, 2, 3};
        QTest::newRow("all but the ETX")
            << frames({1, 2, 3}) + frame(4).first(123) << QList{1, 2, 3};
        // Line noise that reads as a frame of another function 32767 bytes long.
        QTest::newRow("false frame start")
            << frames({1}) + QByteArray("\x10\x02\x7f\xff\x00\x05", 6) + frames({2, 3, 4, 5})
            << QList{1, 2, 3, 4, 5};
    }

    void incompleteFrameIsReported()
    {
        QFETCH(QByteArray, capture);
        QFETCH(QList<int>, cycles);
        QStringList lines;
        for (int cycle : cycles)
            lines << expectedLine(cycle);
        for (const char *chunk : {"1", "4096"}) {
            const Run run = decodeFile(capture, {QStringLiteral("--chunk"), QLatin1String(chunk)});
            QCOMPARE(run.exitCode, 1);
            QCOMPARE(records(run), lines);
            QCOMPARE(run.errLines().size(), 1);
            QVERIFY2(run.err.contains("incomplete"), run.err.constData());
        }
    }

    void unitSystemChoosesTheColumns_data()
    {
        QTest::addColumn<QString>("option");
        QTest::addColumn<QString>("distance");
        QTest::addColumn<QString>("force");
        QTest::newRow("US") << QStringLiteral("--us") << QStringLiteral("1.2345")
                            << QStringLiteral("-1");
        QTest::newRow("metric") << QStringLiteral("--metric") << QStringLiteral("31.3563")
                                << QStringLiteral("-4.448222");
    }

    void unitSystemChoosesTheColumns()
    {
        QFETCH(QString, option);
        QFETCH(QString, distance);
        QFETCH(QString, force);
        // Cycle 0 of the samples carries raw distance 12345 and raw weld force -10.
        const Run run = decodeFile(frame(0), {option});
        QCOMPARE(run.exitCode, 0);
        const QStringList lines = records(run);
        QCOMPARE(lines.size(), 1);
        QCOMPARE(column(lines[0], 10), distance);
        QCOMPARE(column(lines[0], 34), force);
    }

    void regionalSettingsShapeNumbers()
    {
#ifdef Q_OS_WIN
        QSKIP("On Windows the regional format is the user's setting, not LC_ALL");
#endif
        const Run run = decodeFile(frame(0), {QStringLiteral("--metric")},
                                   environment(QStringLiteral("de_DE.UTF-8")));
        QCOMPARE(run.exitCode, 0);
        const QStringList lines = QString::fromUtf8(run.out).split(QStringLiteral("\r\n"));
        QCOMPARE(lines.size(), 3);
        QCOMPARE(lines[1].section(u'\t', 10, 10), QStringLiteral("31,3563"));
    }

    // Without --us or --metric the preferences file in the data folder decides, and the
    // regional setting when there is none.
    void preferencesChooseTheUnits_data()
    {
        QTest::addColumn<QString>("argumentFolder");
        QTest::addColumn<QString>("environmentFolder");
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("distance");
        const auto row = [](const char *name, const char *argument, const char *environment,
                            const char *locale, const char *distance) {
            QTest::newRow(name) << argument << environment << locale << distance;
        };
        row("--data-dir, inch", "inch", "", "C.UTF-8", "1.2345");
        row("--data-dir, metric", "metric", "", "en_US.UTF-8", "31.3563");
        row("environment, inch", "", "inch", "C.UTF-8", "1.2345");
        row("environment, metric", "", "metric", "en_US.UTF-8", "31.3563");
        row("--data-dir over environment", "metric", "inch", "C.UTF-8", "31.3563");
#ifndef Q_OS_WIN
        // Windows takes the regional format from the user's settings, not from LC_ALL.
        row("unknown value, US region", "other", "", "en_US.UTF-8", "1.2345");
        row("no file, US region", "empty", "", "en_US.UTF-8", "1.2345");
        row("no file, German region", "empty", "", "de_DE.UTF-8", "31,3563");
#endif
    }

    void preferencesChooseTheUnits()
    {
        QFETCH(QString, argumentFolder);
        QFETCH(QString, environmentFolder);
        QFETCH(QString, locale);
        QFETCH(QString, distance);
        const QHash<QString, QByteArray> values = {{QStringLiteral("inch"), "1"},
                                                   {QStringLiteral("metric"), "0"},
                                                   {QStringLiteral("other"), "7"}};
        for (auto it = values.cbegin(); it != values.cend(); ++it) {
            const QString folder = m_folder.filePath(it.key());
            QVERIFY(QDir().mkpath(folder));
            QFile ini(QDir(folder).filePath(QStringLiteral("corvane-monitor.ini")));
            QVERIFY(ini.open(QIODevice::WriteOnly | QIODevice::Truncate));
            ini.write("[PREFERENCES]\r\nMEASUREMENT_SYSTEM=" + it.value() + "\r\n");
        }
        QVERIFY(QDir().mkpath(m_folder.filePath(QStringLiteral("empty"))));

        QProcessEnvironment env = environment(locale);
        if (!environmentFolder.isEmpty())
            env.insert(QStringLiteral("CORVANE_DATA_DIR"), m_folder.filePath(environmentFolder));
        QStringList arguments;
        if (!argumentFolder.isEmpty())
            arguments << QStringLiteral("--data-dir") << m_folder.filePath(argumentFolder);
        const Run run = decodeFile(frame(0), arguments, env);
        QCOMPARE(run.exitCode, 0);
        const QStringList lines = QString::fromUtf8(run.out).split(QStringLiteral("\r\n"));
        QCOMPARE(lines.size(), 3);
        QCOMPARE(lines[1].section(u'\t', 10, 10), distance);

        // An explicit choice overrides the preferences.
        const Run forced = decodeFile(frame(0), arguments << QStringLiteral("--metric"), env);
        const QString metric = locale.startsWith(QLatin1String("de")) ? QStringLiteral("31,3563")
                                                                      : QStringLiteral("31.3563");
        QCOMPARE(QString::fromUtf8(forced.out)
                     .section(QStringLiteral("\r\n"), 1, 1)
                     .section(u'\t', 10, 10),
                 metric);
    }

    void badUsage_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("unknown option") << QStringList{"--bogus"};
        QTest::newRow("chunk 0") << QStringList{"--chunk", "0"};
        QTest::newRow("negative chunk") << QStringList{"--chunk", "-5"};
        QTest::newRow("chunk not a number") << QStringList{"--chunk", "many"};
        QTest::newRow("chunk without value") << QStringList{"--chunk"};
        QTest::newRow("both unit systems") << QStringList{"--us", "--metric"};
        QTest::newRow("two files") << QStringList{"a.bin", "b.bin"};
    }

    void badUsage()
    {
        QFETCH(QStringList, arguments);
        const QByteArray capture = frames({1}) + '\0';
        const Run run = decode(arguments, &capture);
        QCOMPARE(run.exitCode, 2);
        QCOMPARE(run.out, QByteArray());
        QCOMPARE(run.errLines().size(), 1);
        QVERIFY2(run.err.startsWith("corvane-decode: "), run.err.constData());
    }

    void unreadableFile_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("missing") << "absent.bin";
        QTest::newRow("a folder") << "no-preferences";
    }

    void unreadableFile()
    {
        QFETCH(QString, name);
        const QString path = m_folder.filePath(name);
        const Run run = decode({path});
        QCOMPARE(run.exitCode, 2);
        QCOMPARE(run.out, QByteArray());
        QCOMPARE(run.errLines().size(), 1);
        QVERIFY2(run.err.contains(path.toUtf8()), run.err.constData());
    }
};

QTEST_GUILESS_MAIN(TestDecode)
#include "tst_decode.moc"

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

#include <tuple>

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
        QCOMPARE(fromInput.err, QByteArray());
        QCOMPARE(records(fromInput), records(fromFile));
        // An empty capture gives the header only.
        const QByteArray nothing;
        QCOMPARE(records(decode({}, &nothing)), QStringList());
    }

    // How the bytes are cut into pieces must not change a single line; a damaged or
    // incomplete frame is reported once, and every whole weld around it still comes out.
    void framesInPieces_data()
    {
        QTest::addColumn<QByteArray>("capture");
        QTest::addColumn<QStringList>("chunks");
        QTest::addColumn<QList<int>>("cycles");
        QTest::addColumn<QByteArray>("problem");
        const QByteArray noise = QByteArray("\x33\x10\x10\x03", 4) + frames({1, 2}) +
                                 Function26Frame::encodeFrame(5, QByteArray("\xAB\xCD", 2)) +
                                 QByteArray(3, '\x10') + frames({3}) + QByteArray(1, '\x7E') +
                                 Function26Frame::encodeFrame(40, QByteArray(200, '\x02')) +
                                 frames({4, 5});
        QTest::newRow("other functions and noise")
            << noise << QStringList{"1", "7", "123", "124", "125", "4096"} << QList{1, 2, 3, 4, 5}
            << QByteArray();
        // Resynchronising looks for the next DLE STX, which frame 3 holds nowhere inside.
        for (const auto &[name, at, chunks] :
             {std::tuple{"bad ETX", 123, QStringList{"1", "4096"}},
              std::tuple{"bad DLE", 122, QStringList{"13", "4096"}}}) {
            QByteArray bad = frame(3);
            bad[at] = '\x55';
            QTest::newRow(name) << frames({1, 2}) + bad + frames({4, 5}) << chunks
                                << QList{1, 2, 4, 5}
                                << QByteArray("Unable to resolve End of Transmission");
        }
        const QStringList both = {"1", "4096"};
        for (const int cut : {2, 60, 123})
            QTest::newRow(qPrintable(QStringLiteral("cut after %1").arg(cut)))
                << frames({1, 2, 3}) + frame(4).first(cut) << both << QList{1, 2, 3}
                << QByteArray("incomplete");
        // Line noise that reads as a frame of another function 32767 bytes long.
        QTest::newRow("false frame start")
            << frames({1}) + QByteArray("\x10\x02\x7f\xff\x00\x05", 6) + frames({2, 3, 4, 5})
            << both << QList{1, 2, 3, 4, 5} << QByteArray("incomplete");
    }

    void framesInPieces()
    {
        QFETCH(QByteArray, capture);
        QFETCH(QStringList, chunks);
        QFETCH(QList<int>, cycles);
        QFETCH(QByteArray, problem);
        QStringList lines;
        for (int cycle : cycles)
            lines << expectedLine(cycle);
        for (const QString &chunk : chunks) {
            const Run run = decodeFile(capture, {QStringLiteral("--chunk"), chunk});
            QCOMPARE(records(run), lines);
            QCOMPARE(run.exitCode, problem.isEmpty() ? 0 : 1);
            QCOMPARE(run.err.isEmpty(), problem.isEmpty());
            if (!problem.isEmpty()) {
                QCOMPARE(run.errLines().size(), 1);
                QVERIFY2(run.err.contains(problem), run.err.constData());
            }
        }
    }

    // --us or --metric decide the units; without them the preferences file in the data
    // folder, and the regional setting when there is none.
    void unitsAndRegionalFormat_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QString>("argumentFolder");
        QTest::addColumn<QString>("environmentFolder");
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("distance");
        const auto row = [](const char *name, QStringList options, const char *argument,
                            const char *environment, const char *locale, const char *distance) {
            QTest::newRow(name) << options << argument << environment << locale << distance;
        };
        row("--us", {"--us"}, "metric", "", "C.UTF-8", "1.2345");
        row("--metric", {"--metric"}, "inch", "", "C.UTF-8", "31.3563");
        row("--data-dir, inch", {}, "inch", "", "C.UTF-8", "1.2345");
        row("--data-dir, metric", {}, "metric", "", "en_US.UTF-8", "31.3563");
        row("environment, inch", {}, "", "inch", "C.UTF-8", "1.2345");
        row("--data-dir over environment", {}, "metric", "inch", "C.UTF-8", "31.3563");
#ifndef Q_OS_WIN
        // Windows takes the regional format from the user's settings, not from LC_ALL.
        row("--metric, German region", {"--metric"}, "inch", "", "de_DE.UTF-8", "31,3563");
        row("unknown value, US region", {}, "other", "", "en_US.UTF-8", "1.2345");
        row("no file, US region", {}, "empty", "", "en_US.UTF-8", "1.2345");
        row("no file, German region", {}, "empty", "", "de_DE.UTF-8", "31,3563");
#endif
    }

    void unitsAndRegionalFormat()
    {
        QFETCH(QStringList, options);
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
        if (!argumentFolder.isEmpty())
            options << QStringLiteral("--data-dir") << m_folder.filePath(argumentFolder);
        // Cycle 0 of the samples carries raw distance 12345.
        const Run run = decodeFile(frame(0), options, env);
        QCOMPARE(run.exitCode, 0);
        const QStringList lines = QString::fromUtf8(run.out).split(QStringLiteral("\r\n"));
        QCOMPARE(lines.size(), 3);
        QCOMPARE(lines[1].section(u'\t', 10, 10), distance);
    }

    void badUsageAndUnreadableFiles_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("message");
        QTest::newRow("unknown option") << QStringList{"--bogus"} << "corvane-decode: ";
        QTest::newRow("chunk 0") << QStringList{"--chunk", "0"} << "corvane-decode: ";
        QTest::newRow("negative chunk") << QStringList{"--chunk", "-5"} << "corvane-decode: ";
        QTest::newRow("chunk not a number") << QStringList{"--chunk", "many"} << "corvane-decode: ";
        QTest::newRow("chunk without value") << QStringList{"--chunk"} << "corvane-decode: ";
        QTest::newRow("both unit systems") << QStringList{"--us", "--metric"} << "corvane-decode: ";
        QTest::newRow("two files") << QStringList{"a.bin", "b.bin"} << "corvane-decode: ";
        QTest::newRow("missing file")
            << QStringList{m_folder.filePath("absent.bin")} << m_folder.filePath("absent.bin");
        QTest::newRow("a folder") << QStringList{m_emptyDataFolder} << m_emptyDataFolder;
    }

    void badUsageAndUnreadableFiles()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, message);
        const QByteArray capture = frames({1}) + '\0';
        const Run run = decode(arguments, &capture);
        QCOMPARE(run.exitCode, 2);
        QCOMPARE(run.out, QByteArray());
        QCOMPARE(run.errLines().size(), 1);
        QVERIFY2(run.err.contains(message.toUtf8()), run.err.constData());
    }
};

QTEST_GUILESS_MAIN(TestDecode)
#include "tst_decode.moc"

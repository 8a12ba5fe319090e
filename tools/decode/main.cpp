// corvane-decode: turns a raw capture of a welder link into data-log lines.

#include "CaptureDecoder.h"

#include "platform/BinaryStreams.h"
#include "platform/Clock.h"
#include "platform/ProgramFiles.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>

#include <cstdio>

namespace {

constexpr int kClean = 0;
constexpr int kBadInput = 1;
constexpr int kUsage = 2;

int usageError(const QString &message)
{
    std::fprintf(stderr, "corvane-decode: %s\n", qPrintable(message));
    return kUsage;
}

// Standard input is read with the C library: on Windows a QFile over a pipe reports the
// pipe's end as a read error.
QByteArray readStandardInput(qint64 size)
{
    QByteArray piece(qsizetype(size), Qt::Uninitialized);
    piece.truncate(qsizetype(std::fread(piece.data(), 1, size_t(size), stdin)));
    return piece;
}

void writeLine(std::FILE *stream, const QString &line)
{
    const QByteArray bytes = line.toUtf8() + "\r\n";
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("corvane-decode"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Decodes a raw capture of a welder link (FILE, or standard input) into the lines a "
        "data log would hold: the header, then one line per weld."));
    parser.addHelpOption();
    const QCommandLineOption chunk(QStringLiteral("chunk"),
                                   QStringLiteral("Feed the parser N bytes at a time (4096)."),
                                   QStringLiteral("N"), QStringLiteral("4096"));
    const QCommandLineOption us(QStringLiteral("us"), QStringLiteral("Inches and pounds."));
    const QCommandLineOption metric(QStringLiteral("metric"),
                                    QStringLiteral("Millimetres and newtons."));
    const QCommandLineOption dataDir(
        QStringLiteral("data-dir"),
        QStringLiteral("Data folder whose preferences give the unit system."),
        QStringLiteral("DIR"));
    parser.addOptions({chunk, us, metric, dataDir});
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The capture."),
                                 QStringLiteral("[FILE]"));

    if (!parser.parse(QCoreApplication::arguments()))
        return usageError(parser.errorText());
    if (parser.isSet(QStringLiteral("help"))) {
        std::printf("%s", qPrintable(parser.helpText()));
        return kClean;
    }
    bool chunkIsNumber = false;
    const int chunkSize = parser.value(chunk).toInt(&chunkIsNumber);
    if (!chunkIsNumber || chunkSize < 1)
        return usageError(QStringLiteral("--chunk needs a positive number of bytes"));
    if (parser.isSet(us) && parser.isSet(metric))
        return usageError(QStringLiteral("choose either --us or --metric"));
    if (parser.positionalArguments().size() > 1)
        return usageError(QStringLiteral("give at most one capture file"));

    MeasurementSystem system = MeasurementSystem::Metric;
    if (parser.isSet(us))
        system = MeasurementSystem::US;
    else if (!parser.isSet(metric))
        system = readMeasurementSystem(
            ProgramFiles(ProgramFiles::resolveDataFolder(parser.value(dataDir))).preferencesPath(),
            regionalMeasurementSystem());

    useBinaryStandardStreams();
    QFile input;
    const bool fromStandardInput = parser.positionalArguments().isEmpty();
    if (!fromStandardInput) {
        input.setFileName(parser.positionalArguments().constFirst());
        if (!input.open(QIODevice::ReadOnly))
            return usageError(
                QStringLiteral("cannot read %1: %2").arg(input.fileName(), input.errorString()));
    }

    const SystemClock clock;
    CaptureDecoder decoder(
        system, clock, [](const QString &line) { writeLine(stdout, line); },
        [](const QString &problem) {
            std::fprintf(stderr, "corvane-decode: %s\n", qPrintable(problem));
        });
    writeLine(stdout, decoder.headerLine());
    for (;;) {
        const QByteArray piece =
            fromStandardInput ? readStandardInput(chunkSize) : input.read(chunkSize);
        if (piece.isEmpty())
            break;
        decoder.feed(piece);
    }
    if (fromStandardInput && std::ferror(stdin))
        return usageError(QStringLiteral("read failed on standard input"));
    if (input.error() != QFileDevice::NoError)
        return usageError(QStringLiteral("read failed: %1").arg(input.errorString()));
    decoder.finish();
    std::fflush(stdout);
    return decoder.problemCount() == 0 ? kClean : kBadInput;
}

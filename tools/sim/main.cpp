// corvane-sim: plays power supplies that send one Function 26 weld record after every
// simulated weld.

#include "WeldGenerator.h"

#include "protocol/Function26Frame.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>

#include <cstdio>

namespace {

int usageError(const QString &message)
{
    std::fprintf(stderr, "corvane-sim: %s\n", qPrintable(message));
    return 2;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("corvane-sim"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Plays Corvane power supplies."));
    parser.addHelpOption();
    const QCommandLineOption output(QStringLiteral("output"),
                                    QStringLiteral("Write the frames of --count welds to FILE."),
                                    QStringLiteral("FILE"));
    const QCommandLineOption count(QStringLiteral("count"),
                                   QStringLiteral("Number of welds (default 20)."),
                                   QStringLiteral("N"), QStringLiteral("20"));
    const QCommandLineOption seed(QStringLiteral("seed"),
                                  QStringLiteral("Seed of the value scatter."),
                                  QStringLiteral("S"), QStringLiteral("1"));
    const QCommandLineOption us(QStringLiteral("us"), QStringLiteral("Inch and pound units."));
    parser.addOptions({output, count, seed, us});
    if (!parser.parse(QCoreApplication::arguments()))
        return usageError(parser.errorText());
    if (parser.isSet(QStringLiteral("help"))) {
        std::printf("%s", qPrintable(parser.helpText()));
        return 0;
    }
    bool countOk = false;
    const int welds = parser.value(count).toInt(&countOk);
    if (!countOk || welds < 0)
        return usageError(QStringLiteral("--count needs a number of welds"));
    if (!parser.isSet(output))
        return usageError(QStringLiteral("give --output FILE"));

    const MeasurementSystem system = parser.isSet(us) ? MeasurementSystem::US
                                                      : MeasurementSystem::Metric;
    WeldGenerator generator(system, parser.value(seed).toUInt());
    QFile file(parser.value(output));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return usageError(QStringLiteral("cannot write %1: %2")
                              .arg(file.fileName(), file.errorString()));
    for (int i = 0; i < welds; ++i) {
        // One trailing byte after each frame lets a receiver take the frame at once.
        file.write(Function26Frame::encode(generator.next(), system) + QByteArray(1, '\0'));
    }
    return file.flush() ? 0 : 1;
}

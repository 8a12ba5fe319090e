#include "SimOptions.h"

#include <functional>
#include <limits>

namespace {

// Reads the value of one option into the options; false with the reason.
using Reader = std::function<bool(SimOptions &, const QString &value, QString *errorText)>;

bool refuse(QString *errorText, const QString &reason)
{
    *errorText = reason;
    return false;
}

Reader positiveNumber(double WeldGenerator::Means::*field, const char *name)
{
    return [field, name](SimOptions &options, const QString &value, QString *errorText) {
        bool ok = false;
        const double number = value.toDouble(&ok);
        if (!ok || !(number > 0))
            return refuse(errorText, QStringLiteral("--%1 needs a positive number, not \"%2\"")
                                         .arg(QLatin1String(name), value));
        options.means.*field = number;
        return true;
    };
}

template <typename Integer>
std::optional<Integer> integerIn(const QString &value, qint64 low, qint64 high, int base = 10)
{
    bool ok = false;
    const qint64 number = value.toLongLong(&ok, base);
    if (!ok || number < low || number > high)
        return std::nullopt;
    return Integer(number);
}

struct Option
{
    QString name;
    bool takesValue;
    Reader read;
};

QList<Option> options()
{
    using Kind = SimOptions::SupplyOption::Kind;
    const auto supply = [](Kind kind) {
        return [kind](SimOptions &o, const QString &value, QString *errorText) {
            SimOptions::SupplyOption wanted{kind, value, 0};
            if (kind == Kind::Tcp) {
                const auto port = integerIn<quint16>(value, 0, 65535);
                if (!port)
                    return refuse(errorText, QStringLiteral("--tcp needs a port number 0 to "
                                                            "65535, not \"%1\"")
                                                 .arg(value));
                wanted.port = *port;
                wanted.target.clear();
            } else if (value.isEmpty()) {
                return refuse(errorText, QStringLiteral("a supply needs a device or file"));
            }
            o.supplies.append(wanted);
            return true;
        };
    };
    return {
        {QStringLiteral("tcp"), true, supply(Kind::Tcp)},
        {QStringLiteral("serial"), true, supply(Kind::Serial)},
        {QStringLiteral("pty"), false,
         [](SimOptions &o, const QString &, QString *) {
             o.supplies.append({Kind::Pty, {}, 0});
             return true;
         }},
        {QStringLiteral("output"), true, supply(Kind::File)},
        {QStringLiteral("interval"), true,
         [](SimOptions &o, const QString &v, QString *e) {
             const auto ms = integerIn<int>(v, 0, 24 * 3600 * 1000);
             if (!ms)
                 return refuse(e,
                               QStringLiteral("--interval needs milliseconds, not \"%1\"").arg(v));
             o.intervalMs = *ms;
             return true;
         }},
        {QStringLiteral("count"), true,
         [](SimOptions &o, const QString &v, QString *e) {
             o.count = integerIn<qint64>(v, 0, std::numeric_limits<qint32>::max());
             return o.count ? true
                            : refuse(e, QStringLiteral("--count needs a number of welds, not "
                                                       "\"%1\"")
                                            .arg(v));
         }},
        {QStringLiteral("seed"), true,
         [](SimOptions &o, const QString &v, QString *e) {
             o.seed = integerIn<quint32>(v, 0, std::numeric_limits<quint32>::max());
             return o.seed ? true
                           : refuse(e, QStringLiteral("--seed needs a number, not \"%1\"").arg(v));
         }},
        {QStringLiteral("us"), false,
         [](SimOptions &o, const QString &, QString *) {
             o.system = MeasurementSystem::US;
             return true;
         }},
        {QStringLiteral("metric"), false,
         [](SimOptions &o, const QString &, QString *) {
             o.system = MeasurementSystem::Metric;
             return true;
         }},
        {QStringLiteral("weld-time"), true,
         positiveNumber(&WeldGenerator::Means::weldTime, "weld-time")},
        {QStringLiteral("energy"), true, positiveNumber(&WeldGenerator::Means::energy, "energy")},
        {QStringLiteral("peak-power"), true,
         positiveNumber(&WeldGenerator::Means::peakPower, "peak-power")},
        {QStringLiteral("force"), true, positiveNumber(&WeldGenerator::Means::weldForce, "force")},
        {QStringLiteral("distance"), true,
         positiveNumber(&WeldGenerator::Means::distance, "distance")},
        {QStringLiteral("collapse"), true,
         positiveNumber(&WeldGenerator::Means::collapse, "collapse")},
        {QStringLiteral("scatter"), true,
         [](SimOptions &o, const QString &v, QString *e) {
             bool ok = false;
             const double scatter = v.toDouble(&ok);
             if (!ok || scatter < 0 || scatter > 1)
                 return refuse(
                     e, QStringLiteral("--scatter needs a fraction 0 to 1, not \"%1\"").arg(v));
             o.means.scatter = scatter;
             return true;
         }},
        {QStringLiteral("mode"), true,
         [](SimOptions &o, const QString &v, QString *e) {
             const auto bits = integerIn<quint8>(v, 0, 255, 0); // 0x21 as well as 33
             if (!bits)
                 return refuse(
                     e, QStringLiteral("--mode needs weld-mode bits 0 to 255, not \"%1\"").arg(v));
             o.weldMode = *bits;
             return true;
         }},
        {QStringLiteral("alarm-probability"), true,
         [](SimOptions &o, const QString &v, QString *e) {
             bool ok = false;
             const double p = v.toDouble(&ok);
             if (!ok || p < 0 || p > 1)
                 return refuse(
                     e, QStringLiteral("--alarm-probability needs 0 to 1, not \"%1\"").arg(v));
             o.alarmProbability = p;
             return true;
         }},
        {QStringLiteral("garbage"), true,
         [](SimOptions &o, const QString &v, QString *e) {
             const auto bytes = integerIn<int>(v, 0, 1 << 20);
             if (!bytes)
                 return refuse(
                     e, QStringLiteral("--garbage needs a number of bytes, not \"%1\"").arg(v));
             o.garbageBytes = *bytes;
             return true;
         }},
        {QStringLiteral("replay"), true,
         [](SimOptions &o, const QString &v, QString *e) {
             if (v.isEmpty())
                 return refuse(e, QStringLiteral("--replay needs a capture file"));
             o.replayFile = v;
             return true;
         }},
        {QStringLiteral("pace"), true,
         [](SimOptions &o, const QString &v, QString *e) {
             o.paceBytesPerSecond = integerIn<qint64>(v, 1, 1LL << 32);
             return o.paceBytesPerSecond
                        ? true
                        : refuse(
                              e,
                              QStringLiteral("--pace needs bytes per second, not \"%1\"").arg(v));
         }},
        {QStringLiteral("help"), false,
         [](SimOptions &o, const QString &, QString *) {
             o.help = true;
             return true;
         }},
    };
}

} // namespace

std::optional<SimOptions> SimOptions::parse(const QStringList &arguments, QString *errorText)
{
    const QList<Option> known = options();
    SimOptions result;
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        if (argument == u"-h") {
            result.help = true;
            continue;
        }
        if (!argument.startsWith(u"--")) {
            *errorText = QStringLiteral("unexpected argument \"%1\"").arg(argument);
            return std::nullopt;
        }
        const qsizetype equals = argument.indexOf(u'=');
        const QString name = argument.mid(2, equals < 0 ? -1 : equals - 2);
        const auto option = std::find_if(known.begin(), known.end(),
                                         [&](const Option &o) { return o.name == name; });
        if (option == known.end()) {
            *errorText = QStringLiteral("unknown option --%1").arg(name);
            return std::nullopt;
        }
        QString value;
        if (option->takesValue) {
            if (equals >= 0) {
                value = argument.mid(equals + 1);
            } else if (i + 1 < arguments.size()) {
                value = arguments.at(++i);
            } else {
                *errorText = QStringLiteral("--%1 needs a value").arg(name);
                return std::nullopt;
            }
        } else if (equals >= 0) {
            *errorText = QStringLiteral("--%1 takes no value").arg(name);
            return std::nullopt;
        }
        if (!option->read(result, value, errorText))
            return std::nullopt;
    }
    if (result.help)
        return result;

    if (result.supplies.isEmpty())
        *errorText = QStringLiteral("give at least one supply: --tcp PORT, --serial DEVICE, "
                                    "--pty or --output FILE");
    else if (result.paceBytesPerSecond && result.replayFile.isEmpty())
        *errorText = QStringLiteral("--pace paces a capture: give --replay FILE");
    else if (result.paceBytesPerSecond && result.count)
        *errorText = QStringLiteral("--count counts welds; a paced capture is a byte stream");
    else if (!result.replayFile.isEmpty() && result.garbageBytes > 0)
        *errorText = QStringLiteral("--garbage goes with generated welds, not with --replay");
    else
        return result;
    return std::nullopt;
}

QString SimOptions::helpText()
{
    return QStringLiteral(
        "Usage: corvane-sim SUPPLY... [OPTION]...\n"
        "Plays power supplies that send one Function 26 weld record, followed by one\n"
        "trailing byte, after every simulated weld. Each supply prints one line on\n"
        "standard output at start.\n"
        "\n"
        "Supplies (each may be repeated):\n"
        "  --tcp PORT             listen on 127.0.0.1:PORT (0 picks a free port); weld\n"
        "                         while a client is connected\n"
        "  --serial DEVICE        write to a serial device (9600 8N1)\n"
        "  --pty                  create a pseudo-terminal; weld while its slave is open\n"
        "  --output FILE          write a capture file\n"
        "\n"
        "Options:\n"
        "  --interval MS          time between welds (1000; 0 = as fast as possible)\n"
        "  --count N              welds per supply, then that supply ends (no end)\n"
        "  --seed S               seed of the values (from the time)\n"
        "  --us | --metric        inch and pound, or millimetre and newton (metric)\n"
        "  --weld-time S  --energy J  --peak-power PCT  --force N  --distance MM\n"
        "  --collapse MM          means of the values\n"
        "  --scatter FRACTION     relative scatter of the values (0.03)\n"
        "  --mode BITS            weld-mode bits (1)\n"
        "  --alarm-probability P  chance of each alarm word carrying an alarm (0.02)\n"
        "  --garbage N            N noise bytes (never 0x10) after every weld\n"
        "  --replay FILE          send a raw capture instead, one frame per interval\n"
        "  --pace BYTES_PER_SEC   with --replay: send it as a plain byte stream\n"
        "  --help                 show this text\n"
        "\n"
        "Runs until every supply has finished, or SIGINT or SIGTERM. Bad usage exits 2.\n");
}

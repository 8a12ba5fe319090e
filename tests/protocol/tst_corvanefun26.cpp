#include "Refusal.h"
#include "SampleWelds.h"
#include "TestSuites.h"

#include "platform/ProgramError.h"
#include "platform/RegionalFormat.h"
#include "platform/qlxLanguage.h"
#include "protocol/CorvaneFUN26.h"
#include "protocol/Function26Frame.h"
#include "protocol/RecordFormatter.h"

#include <QTest>

#include <limits>

using CorvaneUSWSupport::CreateFunction26;

namespace {

enum class Scale { None, Milli, Deci, Distance, Velocity, Pressure, Force };

// One value of the 116 data bytes as the power supply lays them out.
struct WireField
{
    const char *name;
    int offset;
    int width;
    bool isSigned;
    Scale scale;
    double (*read)(const CorvaneFUN26 &);
};

// clang-format off
#define FIELD(name, offset, width, isSigned, scale) \
    WireField{#name, offset, width, isSigned, Scale::scale, \
              [](const CorvaneFUN26 &r) { return double(r.name); }}
// clang-format on

const std::array kWireFields = {
    FIELD(CycleCount, 0, 4, true, None),
    FIELD(Hour, 4, 2, true, None),
    FIELD(Minute, 6, 1, false, None),
    FIELD(Second, 7, 1, false, None),
    FIELD(Year, 8, 2, true, None),
    FIELD(Month, 10, 1, false, None),
    FIELD(Day, 11, 1, false, None),
    FIELD(ActualWeldTime, 12, 4, true, Milli),
    FIELD(TotalEnergy, 16, 4, true, Deci),
    FIELD(ActualDistance, 20, 4, true, Distance),
    FIELD(ActualWeldCollapse, 24, 4, true, Distance),
    FIELD(ActualTotalCollapse, 28, 4, true, Distance),
    FIELD(ActualStartFrequency, 32, 4, true, None),
    FIELD(ActualEndFrequency, 36, 4, true, None),
    FIELD(FrequencyChange, 40, 4, true, None),
    FIELD(FrequencyMinimum, 44, 4, true, None),
    FIELD(FrequencyMaximum, 48, 4, true, None),
    FIELD(ActualVelocity, 52, 4, true, Velocity),
    FIELD(TriggerDistance, 56, 4, true, Distance),
    FIELD(RejectPartAlarms, 60, 4, true, None),
    FIELD(SuspectPartAlarms, 64, 4, true, None),
    FIELD(NoCycleAlarms, 68, 4, true, None),
    FIELD(OverloadAlarms, 72, 4, true, None),
    FIELD(EquipmentFailureAlarms, 76, 4, true, None),
    FIELD(CycleModifiedAlarms, 80, 4, true, None),
    FIELD(PresetNumber, 84, 1, false, None),
    FIELD(Units, 85, 1, false, None),
    FIELD(PresentLimitsChanged, 86, 1, false, None),
    FIELD(ReservedByte, 87, 1, false, None),
    FIELD(NoteAlarms, 88, 4, true, None),
    FIELD(SetAmplitudeA, 92, 4, true, None),
    FIELD(SetAmplitudeB, 96, 4, true, None),
    FIELD(WeldMode, 100, 1, false, None),
    FIELD(PowerSupplyControlFlags, 101, 1, false, None),
    FIELD(PeakPower, 102, 2, true, Deci),
    FIELD(WeldPresure, 104, 2, true, Pressure),
    FIELD(WeldForceEnd, 106, 2, true, Force),
    FIELD(HoldForceEnd, 108, 2, true, Force),
    FIELD(TotalCycleTime, 110, 4, true, Milli),
    FIELD(TriggerForce, 114, 2, true, Force),
};

#undef FIELD

// The display-unit factors by Scale, written out as the power supply's documentation
// gives them.
constexpr double kUsFactor[] = {
    1, 0.001, 0.1, 1.0 / 10000.0, 10.0 / 1000.0, 100.0 / 1000.0, 100.0 / 1000.0};
constexpr double kMetricFactor[] = {
    1, 0.001, 0.1, 25.4 / 10000.0, 254.0 / 1000.0, 689.0 / 1000.0, 444.8222 / 1000.0};

double factor(Scale scale, MeasurementSystem system)
{
    return (system == MeasurementSystem::US ? kUsFactor : kMetricFactor)[int(scale)];
}

// The raw integer in the field's bytes: big-endian, two's complement when signed.
qint64 rawValue(const QByteArray &data, const WireField &field)
{
    quint64 value = 0;
    for (int k = 0; k < field.width; ++k)
        value = value * 256 + quint8(data[field.offset + k]);
    const quint64 signBit = quint64(1) << (8 * field.width - 1);
    if (field.isSigned && (value & signBit))
        return qint64(value) - qint64(signBit * 2);
    return qint64(value);
}

const QDateTime kDecodedAt(QDate(2026, 11, 14), QTime(22, 5, 9));

CorvaneFUN26 decode(const QByteArray &data, MeasurementSystem system)
{
    return CreateFunction26(data, 0, system, kDecodedAt);
}

// A record whose values are all different, and different from those of the four fields
// that the data log leaves out.
CorvaneFUN26 distinctRecord()
{
    return {kDecodedAt, 70001,
            21,         59,
            58,         2026,
            12,         31,
            0.25,       120.5,
            1.2345,     0.0401,
            0.0432,     19950,
            19910,      -40,
            19900,      19960,
            50.5,       1.1,
            2,          4,
            8,          16,
            32,         std::numeric_limits<qint32>::min(),
            7,          201,
            202,        203,
            1024,       80,
            60,         35,
            33,         45.5,
            -31,        -1,
            90.25,      0.85,
            777.125};
}

QStringList columns(const QString &line)
{
    return line.split(u'\t');
}

} // namespace

// Decoding the 116 data bytes of a weld record into display units, and the record's
// texts: the weld mode, the data-log header and the data-log line.
class TestCorvaneFUN26 : public QObject
{
    Q_OBJECT

private slots:
    // Bytes filled with a pattern, so that every field has its own value and both signs
    // occur; each field must be read from its offset with its width and sign.
    void everyFieldAtItsOffset_data()
    {
        QTest::addColumn<int>("pattern");
        QTest::addColumn<MeasurementSystem>("system");
        for (const int pattern : {0, 1}) {
            QTest::addRow("pattern %d metric", pattern) << pattern << MeasurementSystem::Metric;
            QTest::addRow("pattern %d US", pattern) << pattern << MeasurementSystem::US;
        }
    }

    void everyFieldAtItsOffset()
    {
        QFETCH(int, pattern);
        QFETCH(MeasurementSystem, system);
        QByteArray data(CorvaneFUN26::kDataBytes, Qt::Uninitialized);
        for (int j = 0; j < data.size(); ++j) {
            const int value = pattern == 0 ? j * 37 + 11 : 255 - j * 37;
            data[j] = char(value & 0xFF);
        }
        const CorvaneFUN26 record = decode(data, system);
        QCOMPARE(record.AcquiredTime, kDecodedAt);
        for (const WireField &field : kWireFields) {
            const double expected = double(rawValue(data, field)) * factor(field.scale, system);
            if (field.read(record) != expected)
                QFAIL(qPrintable(QStringLiteral("%1: %2, expected %3")
                                     .arg(QLatin1String(field.name))
                                     .arg(field.read(record), 0, 'g', 17)
                                     .arg(expected, 0, 'g', 17)));
        }
    }

    // The encoder that tests and the simulator use is the decoder's inverse.
    void encodedRecordDecodesBack_data()
    {
        QTest::addColumn<CorvaneFUN26>("record");
        QTest::addColumn<MeasurementSystem>("system");
        for (const auto system : {MeasurementSystem::Metric, MeasurementSystem::US}) {
            const char *name = system == MeasurementSystem::US ? "US" : "metric";
            QTest::addRow("sample %s", name) << SampleWelds::record(17, system) << system;
            CorvaneFUN26 extremes = SampleWelds::record(1, system);
            extremes.CycleCount = std::numeric_limits<qint32>::min();
            extremes.Minute = 255;
            extremes.NoteAlarms = -1;
            extremes.WeldForceEnd = -32768 * Function26Scale::forSystem(system).force;
            extremes.TriggerForce = 32767 * Function26Scale::forSystem(system).force;
            QTest::addRow("extremes %s", name) << extremes << system;
        }
    }

    void encodedRecordDecodesBack()
    {
        QFETCH(CorvaneFUN26, record);
        QFETCH(MeasurementSystem, system);
        record.AcquiredTime = kDecodedAt;
        const QByteArray data = Function26Frame::encodeData(record, system);
        QCOMPARE(data.size(), CorvaneFUN26::kDataBytes);
        QCOMPARE(decode(data, system), record);
        const QByteArray frame = Function26Frame::encode(record, system);
        QCOMPARE(frame.size(), 124);
        QCOMPARE(CreateFunction26(frame, 6, system, kDecodedAt), record);
    }

    void tooFewBytesFail_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<int>("pos");
        QTest::newRow("empty") << 0 << 0;
        QTest::newRow("one byte short") << 115 << 0;
        QTest::newRow("starting one late") << 116 << 1;
        QTest::newRow("starting before the buffer") << 116 << -1;
    }

    void tooFewBytesFail()
    {
        QFETCH(int, size);
        QFETCH(int, pos);
        const QByteArray buffer(size, '\x01');
        const auto error =
            refusal([&] { CreateFunction26(buffer, pos, MeasurementSystem::Metric, kDecodedAt); });
        QVERIFY2(error, "a record was decoded from too few bytes");
        QCOMPARE(error->number(), ProgramError::kSubscriptOutOfRange);
        QVERIFY2(error->source().contains(QLatin1String("CorvaneUSWSupport.CreateFunction26")),
                 qPrintable(error->source()));
    }

    // Tokens 24 and 6008 are the texts of the time and energy bits; a language table
    // that gives them replaces them, trailing blanks trimmed from the whole.
    void weldModeDescription_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<bool>("german");
        QTest::addColumn<QString>("expected");
        QTest::newRow("none") << 0x00 << false << "----";
        QTest::newRow("time and energy") << 0x03 << false << "Time Energy";
        QTest::newRow("all six") << 0x3F << false
                                 << "Time Energy Peak Power Collapse Absolute Gnd Detect";
        QTest::newRow("bits 6 and 7 only") << 0xC0 << false << "----";
        QTest::newRow("high bits ignored") << 0xD2 << false << "Energy Absolute";
        QTest::newRow("translated") << 0x07 << true << "Zeit Energie Peak Power";
    }

    void weldModeDescription()
    {
        QFETCH(int, mode);
        QFETCH(bool, german);
        QFETCH(QString, expected);
        qlxLanguage language;
        if (german) {
            language.setText(24, QStringLiteral("Zeit "));
            language.setText(6008, QStringLiteral("Energie "));
        }
        CorvaneFUN26 record;
        record.WeldMode = quint8(mode);
        QCOMPARE(record.WeldModeDescription(language), expected);
    }

    void headerRecord()
    {
        const QString header = CorvaneFUN26::HeaderRecord(qlxLanguage());
        QCOMPARE(header.count(u'\t'), 38);
        QVERIFY(!header.endsWith(u'\t'));
        const QStringList expected =
            QStringLiteral(
                "Acquired Time|Cycle Count|Hour|Minute|Second|Year|Month|Day|Weld Time|Energy|"
                "Distance|Weld Collapse|Total Collapse|Start Frequency|End Frequency|"
                "Frequency Change|Frequency Minimum|Frequency Maximum|Velocity|Trigger Distance|"
                "Reject Part Alarms|Suspect Part Alarms|No Cycle Alarms|Overload Alarms|"
                "Equipment Failure Alarms|Cycle Modified Alarms|Preset #|Note Alarms|Amplitude A|"
                "Amplitude B|Mode|PS Control Flags|Peak Power|Weld Pressure|Weld Force|Hold Force|"
                "Total Cycle Time|N/A|N/A")
                .split(u'|');
        QCOMPARE(columns(header), expected);

        // Translated at each call.
        qlxLanguage language;
        for (const auto &[token, text] :
             {std::pair{1196, "k. A."}, {6344, "Weg"}, {6008, "Energie"}})
            language.setText(token, QString::fromUtf8(text));
        QStringList captions = columns(CorvaneFUN26::HeaderRecord(language));
        QCOMPARE(captions.size(), 39);
        QCOMPARE(captions.mid(9, 2), (QStringList{"Energie", "Weg"}));
        QCOMPARE(captions.mid(37), (QStringList{"k. A.", "k. A."}));
        language.setText(6344, QStringLiteral("Abstand"));
        QCOMPARE(columns(CorvaneFUN26::HeaderRecord(language))[10], QStringLiteral("Abstand"));
    }

    void recordColumns()
    {
        const QString line = distinctRecord().Record(RegionalFormat(QLocale::c()));
        QCOMPARE(line.count(u'\t'), 38);
        const QStringList values = columns(line);
        const QStringList expected = {
            values[0], "70001",       "21",     "59",     "58",     "2026",  "12",    "31",
            "0.25",    "120.5",       "1.2345", "0.0401", "0.0432", "19950", "19910", "-40",
            "19900",   "19960",       "50.5",   "1.1",    "2",      "4",     "8",     "16",
            "32",      "-2147483648", "7",      "1024",   "80",     "60",    "35",    "33",
            "45.5",    "-31",         "-1",     "90.25",  "0.85",   "",      ""};
        QCOMPARE(values, expected);
        QVERIFY(!values[0].isEmpty());
        // Units, the limits-changed flag, the reserved byte and the trigger force are
        // kept in the record but not written.
        for (const char *absent : {"201", "202", "203", "777.125"})
            QVERIFY2(!values.contains(QLatin1String(absent)), absent);
    }

    void recordTimeInRegionalForm()
    {
        const auto time = [](QLocale locale) {
            return columns(distinctRecord().Record(RegionalFormat(locale)))[0];
        };
        QCOMPARE(time(QLocale(QLocale::German, QLocale::Germany)), "14.11.2026 22:05:09");
        QCOMPARE(time(QLocale(QLocale::English, QLocale::UnitedStates)), "11/14/2026 10:05:09 PM");
    }

    // The fast number form of the data log against the locale's own general form with 15
    // digits, an ASCII minus and no grouping.
    void numbersInTheRegionalGeneralForm_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<double>("value");
        const double values[] = {-4.448222,
                                 31.3563,
                                 100.0,
                                 0.0,
                                 1e-5,
                                 -2147483.648,
                                 0.1 + 0.2,
                                 1.0 / 3,
                                 0.0001,
                                 1e14,
                                 -3e20,
                                 123456789012.5,
                                 2147483647 * (254.0 / 1000.0)};
        for (const char *locale : {"en_US", "de_DE", "sv_SE", "fi_FI", "nb_NO", "fr_CH"}) {
            for (const double value : values)
                QTest::addRow("%s %g", locale, value) << QString::fromLatin1(locale) << value;
        }
    }

    void numbersInTheRegionalGeneralForm()
    {
        QFETCH(QString, locale);
        QFETCH(double, value);
        QLocale regional(locale);
        regional.setNumberOptions(QLocale::OmitGroupSeparator);
        const QString expected =
            regional.toString(value, 'g', 15).replace(regional.negativeSign(), QString(u'-'));
        const QString text = RegionalFormat(regional).number(value);
        QCOMPARE(text, expected);
        QVERIFY(!text.contains(QChar(0x2212)));
    }

    // The time text is kept for the second it names, and follows the record.
    void lineUnderRegionalSettings()
    {
        const QLocale swedish(QStringLiteral("sv_SE"));
        const RegionalFormat format(swedish);
        RecordFormatter formatter(format);
        CorvaneFUN26 record;
        record.AcquiredTime = QDateTime(QDate(2026, 3, 29), QTime(1, 59, 59), Qt::UTC);
        record.WeldForceEnd = -4.448222;
        record.CycleModifiedAlarms = qint32(0x80000000);
        const QStringList columns = formatter.format(record).split(u'\t');
        QCOMPARE(columns.size(), CorvaneFUN26::kRecordColumns);
        QCOMPARE(columns.at(0), format.dateTime(record.AcquiredTime.toLocalTime()));
        QCOMPARE(columns.at(25), QStringLiteral("-2147483648"));
        QCOMPARE(columns.at(34), QStringLiteral("-4,448222"));
        QCOMPARE(record.Record(format), formatter.format(record));

        const QDateTime first = record.AcquiredTime;
        record.AcquiredTime = first.addMSecs(1000);
        QCOMPARE(formatter.format(record).section(u'\t', 0, 0),
                 format.dateTime(record.AcquiredTime));
        record.AcquiredTime = first.addMSecs(999);
        QCOMPARE(formatter.format(record).section(u'\t', 0, 0), format.dateTime(first));
    }
};

CORVANE_TEST_SUITE(TestCorvaneFUN26)
#include "tst_corvanefun26.moc"

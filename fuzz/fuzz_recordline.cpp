// Feeds every weld record the parser can produce to the data-log line formatter, under
// regional settings that differ in decimal separator and minus sign. Each line must
// have its 39 columns, no tab or line break inside a field, the ASCII minus only, and
// numbers that read back as the values they were written from.

#include "platform/RegionalFormat.h"
#include "protocol/CorvaneFUN26.h"
#include "protocol/RecordFormatter.h"

#include <QStringList>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

void check(bool condition)
{
    if (!condition)
        __builtin_trap();
}

struct Regional
{
    explicit Regional(const char *name)
        : format(QLocale(QString::fromLatin1(name)))
        , text(format)
        , decimalPoint(format.locale().decimalPoint())
    {}

    RegionalFormat format;
    RecordFormatter text;
    QString decimalPoint;
};

Regional &regional(quint8 choice)
{
    static Regional all[] = {Regional("en_US"), Regional("de_DE"), Regional("sv_SE"),
                             Regional("fi_FI"), Regional("nb_NO"), Regional("ar_EG")};
    return all[choice % std::size(all)];
}

// The columns that hold doubles, and the values written there.
void checkReals(const QStringList &columns, const CorvaneFUN26 &r, const QString &decimalPoint)
{
    const std::pair<int, double> reals[] = {
        {8, r.ActualWeldTime},      {9, r.TotalEnergy},          {10, r.ActualDistance},
        {11, r.ActualWeldCollapse}, {12, r.ActualTotalCollapse}, {18, r.ActualVelocity},
        {19, r.TriggerDistance},    {32, r.PeakPower},           {33, r.WeldPresure},
        {34, r.WeldForceEnd},       {35, r.HoldForceEnd},        {36, r.TotalCycleTime},
    };
    for (const auto &[column, value] : reals) {
        QString text = columns.at(column);
        text.replace(decimalPoint, QStringLiteral("."));
        bool ok = false;
        const double back = text.toDouble(&ok);
        check(ok);
        check(std::fabs(back - value) <= 1e-14 * std::fabs(value));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size < 2)
        return 0;
    Regional &place = regional(data[0]);
    const MeasurementSystem system =
        data[1] & 1 ? MeasurementSystem::US : MeasurementSystem::Metric;
    uchar block[CorvaneFUN26::kDataBytes] = {};
    std::memcpy(block, data + 2, qMin(size - 2, sizeof block));
    qint64 ms = 0;
    if (size >= 2 + sizeof block + sizeof ms)
        std::memcpy(&ms, data + 2 + sizeof block, sizeof ms);
    // Any moment within some thousand years of the epoch, or none at all.
    const QDateTime stamp =
        ms % 7 == 0 ? QDateTime() : QDateTime::fromMSecsSinceEpoch(ms % (1ll << 45), Qt::UTC);

    CorvaneFUN26 record;
    decodeFunction26(block, Function26Scale::forSystem(system), stamp, record);
    const QString &line = place.text.format(record);
    check(!line.contains(u'\r') && !line.contains(u'\n') && !line.contains(QChar(0x2212)));
    const QStringList columns = line.split(u'\t');
    check(columns.size() == CorvaneFUN26::kRecordColumns);
    check(columns.at(0) == place.format.dateTime(stamp));
    check(columns.at(1) == QString::number(record.CycleCount));
    check(columns.at(25) == QString::number(record.CycleModifiedAlarms));
    check(columns.at(37).isEmpty() && columns.at(38).isEmpty());
    checkReals(columns, record, place.decimalPoint);
    return 0;
}

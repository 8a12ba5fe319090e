// Feeds arbitrary text to the reader of the subgroup report that `corvane-spc import`
// stores. A file edited in a spreadsheet, cut off in a copy or saved in another
// encoding must be refused with a reason, never crash the reader; and what it accepts
// must come back unchanged when written out as a report and read again.

#include "CsvWriter.h"
#include "SpcTool.h"
#include "SubgroupCsv.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace {

void check(bool condition)
{
    if (!condition)
        __builtin_trap();
}

bool sameNumber(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

QString reportOf(const QList<qlaDatabase6::Subgroup> &subgroups)
{
    QString text = CsvWriter::row(SubgroupCsv::heading());
    int number = 0;
    for (const qlaDatabase6::Subgroup &subgroup : subgroups) {
        const qlaDatabase6::SubgroupHeader &h = subgroup.header();
        ++number;
        for (const qlaDatabase6::TestItem &item : subgroup.testItems())
            for (const qlaDatabase6::SubgroupValue &value : item.values)
                text += CsvWriter::row(
                    {QString::number(number), h.dateTime.toString(Qt::ISODateWithMs), h.partGroup,
                     h.part, h.processGroup, h.process, h.sourceTag, QString::number(h.valueCount),
                     item.name, QString::number(item.kind), QString::number(value.sampleNumber),
                     SpcTool::numberText(value.value), value.text});
    }
    return text;
}

void compare(const QList<qlaDatabase6::Subgroup> &a, const QList<qlaDatabase6::Subgroup> &b)
{
    check(a.size() == b.size());
    for (qsizetype s = 0; s < a.size(); ++s) {
        check(a[s].header().dateTime == b[s].header().dateTime);
        check(a[s].header().part == b[s].header().part);
        check(a[s].testItems().size() == b[s].testItems().size());
        for (qsizetype i = 0; i < a[s].testItems().size(); ++i) {
            const qlaDatabase6::TestItem &x = a[s].testItems()[i];
            const qlaDatabase6::TestItem &y = b[s].testItems()[i];
            check(x.name == y.name && x.kind == y.kind && x.values.size() == y.values.size());
            for (qsizetype v = 0; v < x.values.size(); ++v) {
                check(sameNumber(x.values[v].value, y.values[v].value));
                check(x.values[v].text == y.values[v].text);
            }
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    QString problem;
    const auto subgroups = SubgroupCsv::read(text, problem);
    if (!subgroups) {
        check(!problem.isEmpty());
        return 0;
    }
    const auto again = SubgroupCsv::read(reportOf(*subgroups), problem);
    check(again.has_value());
    compare(*subgroups, *again);
    return 0;
}

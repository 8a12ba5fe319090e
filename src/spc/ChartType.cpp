#include "ChartType.h"

namespace spc {

QString chartTypeName(ChartType type)
{
    switch (type) {
    case ChartType::XbarR:
        return QStringLiteral("xbar-r");
    case ChartType::XbarS:
        return QStringLiteral("xbar-s");
    case ChartType::IndividualsMR:
        return QStringLiteral("i-mr");
    }
    return {};
}

std::optional<ChartType> chartTypeFromName(const QString &name)
{
    for (ChartType type : {ChartType::XbarR, ChartType::XbarS, ChartType::IndividualsMR})
        if (name == chartTypeName(type))
            return type;
    return std::nullopt;
}

ChartType chartTypeForSize(int n)
{
    if (n <= 1)
        return ChartType::IndividualsMR;
    return n <= 10 ? ChartType::XbarR : ChartType::XbarS;
}

} // namespace spc

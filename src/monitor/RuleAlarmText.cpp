#include "RuleAlarmText.h"

#include "SamplingSeam.h"

#include "platform/qlxLanguage.h"

#include <array>

namespace {

// Index 0 is the rule of the range, standard deviation or moving-range chart; 1 to 8 the
// rules of the mean chart.
constexpr std::array<const char16_t *, 9> kRuleTexts = {
    u"7800|Spread chart: one point beyond its control limits",
    u"7801|Rule 1: one point beyond 3 sigma",
    u"7802|Rule 2: nine points in a row on one side of the centre line",
    u"7803|Rule 3: six points in a row steadily rising or falling",
    u"7804|Rule 4: fourteen points in a row alternating up and down",
    u"7805|Rule 5: two of three points beyond 2 sigma on one side",
    u"7806|Rule 6: four of five points beyond 1 sigma on one side",
    u"7807|Rule 7: fifteen points in a row within 1 sigma",
    u"7808|Rule 8: eight points in a row beyond 1 sigma",
};

} // namespace

QString ruleAlarmText(const RuleViolation &violation, const qlxLanguage &language)
{
    const int index = violation.spreadChart ? 0 : violation.rule;
    const QString rule = index >= 0 && index < int(kRuleTexts.size())
                             ? language.Translate(kRuleTexts[std::size_t(index)])
                             : QString::number(violation.rule);
    return violation.characteristic + QStringLiteral(" - ") + rule;
}

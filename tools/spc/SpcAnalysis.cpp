#include "SpcAnalysis.h"

#include "ChartPicture.h"
#include "CsvWriter.h"
#include "SpcTool.h"

#include "platform/Clock.h"
#include "platform/ProgramError.h"
#include "platform/spc/Database.h"
#include "spc/Capability.h"

using spc::Chart;
using spc::ChartPoint;

namespace {

// Figures for people: six significant digits.
QString rounded(double value)
{
    return QString::number(value, 'g', 6);
}

spc::Characteristic characteristicOf(const SpcCommand &command)
{
    return {command.part, command.process, command.test};
}

QString described(const spc::Characteristic &c)
{
    return QStringLiteral("\"%1\" of part \"%2\" on process \"%3\"").arg(c.test, c.part, c.process);
}

const QStringList kChartHeading = {
    QStringLiteral("subgroup"), QStringLiteral("date_time"), QStringLiteral("n"),
    QStringLiteral("mean"),     QStringLiteral("range"),     QStringLiteral("stddev"),
    QStringLiteral("x_cl"),     QStringLiteral("x_lcl"),     QStringLiteral("x_ucl"),
    QStringLiteral("r_cl"),     QStringLiteral("r_lcl"),     QStringLiteral("r_ucl"),
    QStringLiteral("rules")};

const QStringList kCapabilityHeading = {QStringLiteral("n"),
                                        QStringLiteral("subgroups"),
                                        QStringLiteral("mean"),
                                        QStringLiteral("sigma_within"),
                                        QStringLiteral("sigma_overall"),
                                        QStringLiteral("lsl"),
                                        QStringLiteral("usl"),
                                        QStringLiteral("cp"),
                                        QStringLiteral("cp_low"),
                                        QStringLiteral("cp_high"),
                                        QStringLiteral("cpk"),
                                        QStringLiteral("cpk_low"),
                                        QStringLiteral("cpk_high"),
                                        QStringLiteral("pp"),
                                        QStringLiteral("pp_low"),
                                        QStringLiteral("pp_high"),
                                        QStringLiteral("ppk"),
                                        QStringLiteral("ppk_low"),
                                        QStringLiteral("ppk_high"),
                                        QStringLiteral("ppm_observed")};

// The rules a point breaks: the numbers of the upper chart, and R1 for the lower chart's
// point beyond its limits.
QString rulesText(const ChartPoint &p)
{
    QString text = p.xRules.text();
    if (p.spreadBeyondLimits)
        text += text.isEmpty() ? QStringLiteral("R1") : QStringLiteral(" R1");
    return text;
}

} // namespace

SpcAnalysis::SpcAnalysis(qlaDatabase6::Database &database, QTextStream &out, const Clock &clock)
    : m_database(database)
    , m_out(out)
    , m_clock(clock)
{}

void SpcAnalysis::writeRow(bool csv, const QStringList &fields)
{
    if (csv)
        m_out << CsvWriter::row(fields);
    else
        m_out << fields.join(u'\t') << '\n';
}

Chart SpcAnalysis::chartOf(const SpcCommand &command)
{
    const spc::Characteristic characteristic = characteristicOf(command);
    spc::ChartRequest request;
    request.type = command.chartType;
    request.rules = command.rules;
    if (command.baseline) {
        request.baseline.kind = spc::ChartBaseline::Kind::FirstSubgroups;
        request.baseline.count = *command.baseline;
    } else if (command.frozen) {
        const std::optional<spc::ControlLimits> frozen =
            spc::StoredSubgroups::frozenLimits(m_database, characteristic);
        if (!frozen)
            throw ProgramError::raised(QStringLiteral("no control limits are frozen for %1")
                                           .arg(described(characteristic)),
                                       QStringLiteral("SpcAnalysis.chart"));
        request.baseline.kind = spc::ChartBaseline::Kind::Frozen;
        request.baseline.frozen = *frozen;
    }
    const std::vector<spc::SubgroupValues> subgroups =
        spc::StoredSubgroups::load(m_database, characteristic, command.since, command.until);
    Chart chart = spc::ControlChart::build(subgroups, request);
    if (chart.status == spc::ChartStatus::SubgroupTooLarge)
        throw ProgramError::raised(QStringLiteral("ranges of more than 25 values have no "
                                                  "constants: use --type xbar-s"),
                                   QStringLiteral("SpcAnalysis.chart"));
    if (chart.status != spc::ChartStatus::Ready)
        throw ProgramError::raised(
            QStringLiteral("not enough data for control limits of %1 (%2 subgroups with values; "
                           "at least two with spread within them are needed)")
                .arg(described(characteristic))
                .arg(subgroups.size()),
            QStringLiteral("SpcAnalysis.chart"));
    return chart;
}

void SpcAnalysis::chart(const SpcCommand &command)
{
    const Chart chart = chartOf(command);
    if (!command.imageFile.isEmpty()) {
        ChartPicture::write(chart, command.imageFile);
        return;
    }
    const bool csv = command.csv;
    const auto number = [csv](double value) {
        return csv ? SpcTool::numberText(value) : rounded(value);
    };
    const auto optional = [&](const std::optional<double> &value) {
        return value ? number(*value) : QString();
    };
    if (!csv)
        m_out << spc::chartTypeName(chart.type) << " centre " << rounded(chart.limits.centre)
              << " sigma " << rounded(chart.limits.sigma) << '\n';
    writeRow(csv, kChartHeading);
    for (const ChartPoint &p : chart.points) {
        const bool spread = p.spread.has_value();
        writeRow(csv, {QString::number(p.subgroupId), SpcTool::timeText(p.dateTime),
                       QString::number(p.figures.n), number(p.figures.mean), optional(p.spread),
                       optional(p.figures.stddev), number(p.xCentre), number(p.xLower),
                       number(p.xUpper), spread ? number(p.spreadCentre) : QString(),
                       spread ? number(p.spreadLower) : QString(),
                       spread ? number(p.spreadUpper) : QString(), rulesText(p)});
    }
}

void SpcAnalysis::capability(const SpcCommand &command)
{
    const spc::Characteristic characteristic = characteristicOf(command);
    const std::vector<spc::SubgroupValues> subgroups =
        spc::StoredSubgroups::load(m_database, characteristic, command.since, command.until);
    const spc::CapabilityFigures f =
        spc::Capability::of(subgroups, spc::ControlChart::typeFor(subgroups),
                            spc::StoredSubgroups::specificationLimits(m_database, characteristic));
    const bool csv = command.csv;
    const auto number = [csv](const std::optional<double> &value) {
        return !value ? QString() : csv ? SpcTool::numberText(*value) : rounded(*value);
    };
    const auto positive = [](double value) {
        return value > 0 ? std::optional<double>(value) : std::nullopt;
    };
    QStringList fields = {QString::number(f.values),
                          QString::number(f.subgroups),
                          number(f.values > 0 ? std::optional<double>(f.mean) : std::nullopt),
                          number(positive(f.sigmaWithin)),
                          number(positive(f.sigmaOverall)),
                          number(f.limits.lower),
                          number(f.limits.upper)};
    for (const std::optional<spc::Estimate> &index : {f.cp, f.cpk, f.pp, f.ppk})
        for (double spc::Estimate::*part :
             {&spc::Estimate::value, &spc::Estimate::low, &spc::Estimate::high})
            fields.append(number(index ? std::optional<double>((*index).*part) : std::nullopt));
    fields.append(number(f.values > 0 ? std::optional<double>(f.ppmObserved) : std::nullopt));
    if (csv) {
        writeRow(true, kCapabilityHeading);
        writeRow(true, fields);
        return;
    }
    for (qsizetype i = 0; i < fields.size(); ++i)
        m_out << kCapabilityHeading[i] << '\t' << fields[i] << '\n';
    if (!f.enoughData)
        m_out << "not enough data: fewer than two subgroups with values, or no spread\n";
}

void SpcAnalysis::freezeLimits(const SpcCommand &command)
{
    const spc::Characteristic characteristic = characteristicOf(command);
    const Chart chart = chartOf(command);
    m_database.freezeControlLimits(
        spc::StoredSubgroups::recordOf(characteristic, chart, m_clock.now()));
    m_out << "froze " << spc::chartTypeName(chart.type) << " limits of "
          << described(characteristic) << ": centre " << SpcTool::numberText(chart.limits.centre)
          << ", sigma " << SpcTool::numberText(chart.limits.sigma) << ", from "
          << chart.baselineSubgroups << " subgroups\n";
}

void SpcAnalysis::listControlLimits()
{
    for (const qlaDatabase6::ControlLimitRecord &r : m_database.listControlLimits())
        m_out << QStringList{SpcTool::tabSafe(r.part),
                             SpcTool::tabSafe(r.process),
                             SpcTool::tabSafe(r.test),
                             r.chartType,
                             SpcTool::numberText(r.centre),
                             SpcTool::numberText(r.sigma),
                             QString::number(r.baselineSubgroups),
                             SpcTool::timeText(r.baselineFrom),
                             SpcTool::timeText(r.baselineUntil),
                             SpcTool::timeText(r.frozenAt)}
                     .join(u'\t')
              << '\n';
}

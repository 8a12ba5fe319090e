#include "dlgSummary.h"

#include "BgrColor.h"
#include "Histogram.h"
#include "ScaledFont.h"
#include "StatsCaptions.h"
#include "platform/ErrorPassing.h"
#include "platform/qlxLanguage.h"
#include "spc/Capability.h"
#include "stats/NumberPicture.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <limits>

dlgSummary::dlgSummary(const qlxLanguage &language, ErrorReport &errors, QWidget *parent)
    : QDialog(parent)
    , m_language(language)
    , m_errors(errors)
{
    setObjectName(QStringLiteral("dlgSummary"));
    setModal(true);

    m_lblTitle = new QLabel(this);
    m_lblTitle->setObjectName(QStringLiteral("lblTitle"));
    m_lblTitle->setFont(scaledFont(font(), 1.5, true));

    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(12);
    m_lblMinimumCaption = addCaption(QStringLiteral("lblMinimumCaption"));
    m_lblMinimum = addFigure(QStringLiteral("lblMinimum"));
    m_lblAverageCaption = addCaption(QStringLiteral("lblAverageCaption"));
    m_lblAverage = addFigure(QStringLiteral("lblAverage"));
    m_lblMaximumCaption = addCaption(QStringLiteral("lblMaximumCaption"));
    m_lblMaximum = addFigure(QStringLiteral("lblMaximum"));
    m_lblCountLSLCaption = addCaption(QStringLiteral("lblCountLSLCaption"));
    m_lblCountLSL = addFigure(QStringLiteral("lblCountLSL"));
    m_lblCountUSLCaption = addCaption(QStringLiteral("lblCountUSLCaption"));
    m_lblCountUSL = addFigure(QStringLiteral("lblCountUSL"));
    m_lblTotalCaption = addCaption(QStringLiteral("lblTotalCaption"));
    m_lblTotal = addFigure(QStringLiteral("lblTotal"));
    m_lblSigmaOverallCaption = addCaption(QStringLiteral("lblSigmaOverallCaption"));
    m_lblSigmaOverall = addFigure(QStringLiteral("lblSigmaOverall"));
    m_lblPpCaption = addCaption(QStringLiteral("lblPpCaption"));
    m_lblPp = addFigure(QStringLiteral("lblPp"));
    m_lblPpkCaption = addCaption(QStringLiteral("lblPpkCaption"));
    m_lblPpk = addFigure(QStringLiteral("lblPpk"));

    // The running figures on the left, the counts beyond the limits in the middle, the
    // overall capability on the right.
    grid->addWidget(m_lblMinimumCaption, 0, 0);
    grid->addWidget(m_lblMinimum, 0, 1);
    grid->addWidget(m_lblAverageCaption, 1, 0);
    grid->addWidget(m_lblAverage, 1, 1);
    grid->addWidget(m_lblMaximumCaption, 2, 0);
    grid->addWidget(m_lblMaximum, 2, 1);
    grid->addWidget(m_lblCountLSLCaption, 0, 3);
    grid->addWidget(m_lblCountLSL, 0, 4);
    grid->addWidget(m_lblCountUSLCaption, 1, 3);
    grid->addWidget(m_lblCountUSL, 1, 4);
    grid->addWidget(m_lblTotalCaption, 2, 3);
    grid->addWidget(m_lblTotal, 2, 4);
    grid->addWidget(m_lblSigmaOverallCaption, 0, 6);
    grid->addWidget(m_lblSigmaOverall, 0, 7);
    grid->addWidget(m_lblPpCaption, 1, 6);
    grid->addWidget(m_lblPp, 1, 7);
    grid->addWidget(m_lblPpkCaption, 2, 6);
    grid->addWidget(m_lblPpk, 2, 7);
    grid->setColumnMinimumWidth(2, 24);
    grid->setColumnMinimumWidth(5, 24);
    grid->setColumnStretch(8, 1);

    // How many values the figures cover; in a long run, how many of them only as a tally.
    m_lblCoverage = new QLabel(this);
    m_lblCoverage->setObjectName(QStringLiteral("lblCoverage"));

    m_histogram = new Histogram(this);
    m_histogram->setObjectName(QStringLiteral("ctlHistogram"));
    m_histogram->setErrorReport(&m_errors);
    m_histogram->setMinimumSize(440, 220);

    m_bnClose = new QPushButton(this);
    m_bnClose->setObjectName(QStringLiteral("bnClose"));
    m_bnClose->setDefault(true);
    connect(m_bnClose, &QPushButton::clicked, this, &dlgSummary::bnClose_Click);

    m_bnControlChart = new QPushButton(this);
    m_bnControlChart->setObjectName(QStringLiteral("bnControlChart"));
    m_bnControlChart->setVisible(false);
    connect(m_bnControlChart, &QPushButton::clicked, this, &dlgSummary::bnControlChart_Click);

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_bnControlChart);
    buttons->addStretch(1);
    buttons->addWidget(m_bnClose);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_lblTitle);
    layout->addLayout(grid);
    layout->addWidget(m_lblCoverage);
    layout->addWidget(m_histogram, 1);
    layout->addLayout(buttons);
}

dlgSummary::~dlgSummary() = default;

std::unique_ptr<dlgSummary> dlgSummary::fromDataset(const Dataset &dataset,
                                                    const qlxLanguage &language,
                                                    ErrorReport &errors, QWidget *parent)
{
    auto dialog = std::make_unique<dlgSummary>(language, errors, parent);
    dialog->setFigures(SummaryFigures::fromDataset(dataset));
    return dialog;
}

QLabel *dlgSummary::addCaption(const QString &objectName)
{
    auto *label = new QLabel(this);
    label->setObjectName(objectName);
    return label;
}

QLabel *dlgSummary::addFigure(const QString &objectName)
{
    auto *label = new QLabel(this);
    label->setObjectName(objectName);
    label->setFont(scaledFont(font(), 1.2, true));
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

void dlgSummary::setFigures(SummaryFigures figures)
{
    m_figures = std::move(figures);
    m_loaded = false;
}

qint32 dlgSummary::CountLSL() const
{
    return passOn("dlgSummary.CountLSL", [this] {
        return countBelow(
            std::span<const double>(m_figures.Values.constData(), m_figures.Values.size()),
            m_figures.LSL, m_figures.Folded);
    });
}

qint32 dlgSummary::CountUSL() const
{
    return passOn("dlgSummary.CountUSL", [this] {
        return countAbove(
            std::span<const double>(m_figures.Values.constData(), m_figures.Values.size()),
            m_figures.USL, m_figures.Folded);
    });
}

void dlgSummary::showEvent(QShowEvent *event)
{
    if (!m_loaded)
        Form_Load();
    QDialog::showEvent(event);
}

void dlgSummary::Form_Load()
{
    m_loaded = true;
    reportFailures(m_errors, "dlgSummary.Form_Load", [this] {
        const auto translate = [this](QStringView token) { return m_language.Translate(token); };
        setWindowTitle(m_figures.Title);
        m_lblTitle->setText(m_figures.Title);
        m_bnClose->setText(translate(StatsCaptions::kClose));
        m_lblMinimumCaption->setText(translate(StatsCaptions::kMinimum));
        m_lblMaximumCaption->setText(translate(StatsCaptions::kMaximum));
        m_lblAverageCaption->setText(translate(StatsCaptions::kAverage));
        m_lblTotalCaption->setText(translate(StatsCaptions::kTotal));
        m_lblCountLSLCaption->setText(translate(StatsCaptions::kCount) + QStringLiteral(" < ") +
                                      translate(StatsCaptions::kLSL));
        m_lblCountUSLCaption->setText(translate(StatsCaptions::kCount) + QStringLiteral(" > ") +
                                      translate(StatsCaptions::kUSL));

        // Before the first weld there are no figures, and a 0.0000 would read as a
        // value: they stay empty and the plot says that no values came yet.
        const NumberPicture picture(m_figures.NumberFormat);
        const auto figure = [&](double value) {
            if (m_figures.valueCount() == 0)
                return QString();
            const QString number = picture.format(value, locale());
            return m_figures.Unit.isEmpty() ? number : number + u' ' + m_figures.Unit;
        };
        m_lblMinimum->setText(figure(m_figures.Minimum));
        m_lblMaximum->setText(figure(m_figures.Maximum));
        m_lblAverage->setText(figure(m_figures.Average));

        const qint32 below = CountLSL();
        m_lblCountLSL->setText(QString::number(below));
        const qint32 above = CountUSL();
        m_lblCountUSL->setText(QString::number(above));
        if (qint64(below) + above > std::numeric_limits<qint32>::max())
            throw ProgramError::overflow(QStringLiteral("dlgSummary.Form_Load"));
        m_lblTotal->setText(QString::number(below + above));

        QString coverage =
            translate(StatsCaptions::kValues) + QStringLiteral(": %1").arg(m_figures.valueCount());
        if (m_figures.FoldedCount > 0)
            coverage += QStringLiteral(" (%1: %2)")
                            .arg(translate(StatsCaptions::kFolded))
                            .arg(m_figures.FoldedCount);
        m_lblCoverage->setText(coverage);
        m_lblSigmaOverallCaption->setText(translate(StatsCaptions::kSigmaOverall));
        m_lblPpCaption->setText(translate(StatsCaptions::kPp));
        m_lblPpkCaption->setText(translate(StatsCaptions::kPpk));
        m_bnControlChart->setText(translate(StatsCaptions::kControlChart));
        showCapability();

        m_histogram->setAutoRefresh(false);
        m_histogram->setLimits(m_figures.LSL, m_figures.USL);
        m_histogram->setWarningUpper(m_figures.WarningUpper);
        m_histogram->setWarningLower(m_figures.WarningLower);
        m_histogram->setNumberFormat(m_figures.NumberFormat);
        m_histogram->setValues(m_figures.Values, m_figures.Folded);
        m_histogram->setEmptyText(translate(StatsCaptions::kNoValuesYet));
        // Bars beyond a specification limit red, beyond a warning limit yellow, so the
        // share out of specification is seen at once.
        m_histogram->setLimitLowerColor(BgrColor::toColor(BgrColor::kRed));
        m_histogram->setLimitUpperColor(BgrColor::toColor(BgrColor::kRed));
        m_histogram->setWarningLowerColor(BgrColor::toColor(BgrColor::kYellow));
        m_histogram->setWarningUpperColor(BgrColor::toColor(BgrColor::kYellow));
        m_histogram->Refresh();
    });
}

// Pp and Ppk of every value so far against the limits the characteristic has: with one
// limit, Ppk is that limit's one-sided index and Pp has no value.
void dlgSummary::showCapability()
{
    spc::SpecificationLimits limits;
    if (m_figures.HasLSL)
        limits.lower = m_figures.LSL;
    if (m_figures.HasUSL)
        limits.upper = m_figures.USL;
    std::vector<std::pair<double, qint64>> tallied;
    tallied.reserve(std::size_t(m_figures.Folded.size()));
    for (const ValueCount &v : m_figures.Folded)
        tallied.emplace_back(v.value, v.count);
    const spc::CapabilityFigures f = spc::Capability::overall(
        std::span<const double>(m_figures.Values.constData(), m_figures.Values.size()), limits,
        tallied);
    const auto number = [this](double value) { return locale().toString(value, 'f', 3); };
    const NumberPicture picture(m_figures.NumberFormat);
    m_lblSigmaOverall->setText(f.enoughData ? picture.format(f.sigmaOverall, locale()) : QString());
    m_lblPp->setText(f.enoughData && f.pp ? number(f.pp->value) : QString());
    m_lblPpk->setText(f.enoughData && f.ppk ? number(f.ppk->value) : QString());
}

void dlgSummary::setControlChartOpener(std::function<void()> open)
{
    m_openControlChart = std::move(open);
    m_bnControlChart->setVisible(bool(m_openControlChart));
}

void dlgSummary::bnControlChart_Click()
{
    reportFailures(m_errors, "dlgSummary.bnControlChart_Click", [this] {
        if (m_openControlChart)
            m_openControlChart();
    });
}

void dlgSummary::bnClose_Click()
{
    reportFailures(m_errors, "dlgSummary.bnClose_Click", [this] { accept(); });
}

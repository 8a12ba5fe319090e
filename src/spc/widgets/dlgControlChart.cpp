#include "dlgControlChart.h"

#include "ChartCaptions.h"

#include "platform/Clock.h"
#include "platform/ErrorPassing.h"
#include "platform/MessageBoxes.h"
#include "platform/qlxLanguage.h"
#include "platform/spc/Database.h"
#include "stats/widgets/Histogram.h"

#include <QCheckBox>
#include <QDateTimeEdit>
#include <QFileDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

// The size of an exported picture: wide enough for a shift of subgroups.
const QSize kExportSize(1400, 800);

QString defaultFileChooser(QWidget *parent, const QString &suffix)
{
    return QFileDialog::getSaveFileName(parent, {}, {}, QStringLiteral("*.%1 (*.%1)").arg(suffix));
}

} // namespace

dlgControlChart::dlgControlChart(std::unique_ptr<qlaDatabase6::Database> database,
                                 spc::Characteristic characteristic, const qlxLanguage &language,
                                 ErrorReport &errors, MessageBoxes &messages, const Clock &clock,
                                 QWidget *parent)
    : QDialog(parent, Qt::Window)
    , m_database(std::move(database))
    , m_language(language)
    , m_errors(errors)
    , m_messages(messages)
    , m_clock(clock)
{
    setObjectName(QStringLiteral("dlgControlChart"));
    m_snapshot.characteristic = std::move(characteristic);
    m_chooseFile = [this](const QString &suffix) { return defaultFileChooser(this, suffix); };

    m_lblTitle = new QLabel(this);
    m_lblTitle->setObjectName(QStringLiteral("lblTitle"));
    QFont titleFont = font();
    titleFont.setBold(true);
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.3);
    m_lblTitle->setFont(titleFont);

    const auto dateEdit = [this](const QString &name) {
        auto *edit = new QDateTimeEdit(this);
        edit->setObjectName(name);
        edit->setCalendarPopup(true);
        edit->setDisplayFormat(QStringLiteral("yyyy-MM-dd HH:mm"));
        return edit;
    };
    m_lblSince = new QLabel(this);
    m_dtpSince = dateEdit(QStringLiteral("dtpSince"));
    m_lblUntil = new QLabel(this);
    m_dtpUntil = dateEdit(QStringLiteral("dtpUntil"));
    m_chkLatest = new QCheckBox(this);
    m_chkLatest->setObjectName(QStringLiteral("chkLatest"));
    m_chkLatest->setChecked(true);
    m_dtpUntil->setEnabled(false);
    connect(m_chkLatest, &QCheckBox::toggled, m_dtpUntil,
            [this](bool latest) { m_dtpUntil->setEnabled(!latest); });
    m_bnShow = new QPushButton(this);
    m_bnShow->setObjectName(QStringLiteral("bnShow"));
    connect(m_bnShow, &QPushButton::clicked, this, &dlgControlChart::bnShow_Click);

    auto *range = new QHBoxLayout;
    range->addWidget(m_lblSince);
    range->addWidget(m_dtpSince);
    range->addWidget(m_lblUntil);
    range->addWidget(m_dtpUntil);
    range->addWidget(m_chkLatest);
    range->addWidget(m_bnShow);
    range->addStretch(1);

    m_plot = new ControlChartPlot(this);
    m_plot->setObjectName(QStringLiteral("ctlControlChart"));

    // The capability figures and the histogram stand beside the charts.
    auto *figures = new QGridLayout;
    m_lblLimits = new QLabel(this);
    m_lblLimits->setObjectName(QStringLiteral("lblLimits"));
    m_lblLimits->setWordWrap(true);
    figures->addWidget(m_lblLimits, 0, 0, 1, 2);
    m_lblSubgroups = addFigure(figures, QStringLiteral("lblSubgroups"), ChartCaptions::kSubgroups);
    m_lblMean = addFigure(figures, QStringLiteral("lblMean"), ChartCaptions::kMeans);
    m_lblSigmaWithin =
        addFigure(figures, QStringLiteral("lblSigmaWithin"), ChartCaptions::kSigmaWithin);
    m_lblSigmaOverall =
        addFigure(figures, QStringLiteral("lblSigmaOverall"), ChartCaptions::kSigmaOverall);
    m_lblCp = addFigure(figures, QStringLiteral("lblCp"), ChartCaptions::kCp);
    m_lblCpk = addFigure(figures, QStringLiteral("lblCpk"), ChartCaptions::kCpk);
    m_lblPp = addFigure(figures, QStringLiteral("lblPp"), ChartCaptions::kPp);
    m_lblPpk = addFigure(figures, QStringLiteral("lblPpk"), ChartCaptions::kPpk);
    m_lblPpm = addFigure(figures, QStringLiteral("lblPpm"), ChartCaptions::kPpm);

    m_histogram = new Histogram(this);
    m_histogram->setObjectName(QStringLiteral("ctlHistogram"));
    m_histogram->setErrorReport(&m_errors);
    m_histogram->setMinimumSize(300, 200);

    auto *side = new QVBoxLayout;
    side->addLayout(figures);
    side->addWidget(m_histogram, 1);

    auto *body = new QHBoxLayout;
    body->addWidget(m_plot, 3);
    body->addLayout(side, 1);

    m_bnFreeze = new QPushButton(this);
    m_bnFreeze->setObjectName(QStringLiteral("bnFreeze"));
    connect(m_bnFreeze, &QPushButton::clicked, this, &dlgControlChart::bnFreeze_Click);
    m_bnExportPng = new QPushButton(this);
    m_bnExportPng->setObjectName(QStringLiteral("bnExportPng"));
    connect(m_bnExportPng, &QPushButton::clicked, this, &dlgControlChart::bnExportPng_Click);
    m_bnExportSvg = new QPushButton(this);
    m_bnExportSvg->setObjectName(QStringLiteral("bnExportSvg"));
    connect(m_bnExportSvg, &QPushButton::clicked, this, &dlgControlChart::bnExportSvg_Click);
    m_bnClose = new QPushButton(this);
    m_bnClose->setObjectName(QStringLiteral("bnClose"));
    connect(m_bnClose, &QPushButton::clicked, this, &QDialog::accept);

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_bnFreeze);
    buttons->addStretch(1);
    buttons->addWidget(m_bnExportPng);
    buttons->addWidget(m_bnExportSvg);
    buttons->addWidget(m_bnClose);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_lblTitle);
    layout->addLayout(range);
    layout->addLayout(body, 1);
    layout->addLayout(buttons);

    translateCaptions();
}

dlgControlChart::~dlgControlChart() = default;

QString dlgControlChart::translate(QStringView token) const
{
    return m_language.Translate(token);
}

QLabel *dlgControlChart::addFigure(QGridLayout *grid, const QString &objectName,
                                   QStringView caption)
{
    const int row = grid->rowCount();
    auto *label = new QLabel(translate(caption), this);
    auto *figure = new QLabel(this);
    figure->setObjectName(objectName);
    figure->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    figure->setTextInteractionFlags(Qt::TextSelectableByMouse);
    grid->addWidget(label, row, 0);
    grid->addWidget(figure, row, 1);
    return figure;
}

void dlgControlChart::translateCaptions()
{
    const spc::Characteristic &c = m_snapshot.characteristic;
    setWindowTitle(translate(ChartCaptions::kControlChart) + QStringLiteral(": ") + c.test);
    m_lblTitle->setText(QStringLiteral("%1 \u2013 %2 \u2013 %3").arg(c.part, c.process, c.test));
    m_lblSince->setText(translate(ChartCaptions::kSince));
    m_lblUntil->setText(translate(ChartCaptions::kUntil));
    m_chkLatest->setText(translate(ChartCaptions::kLatest));
    m_bnShow->setText(translate(ChartCaptions::kShow));
    m_bnFreeze->setText(translate(ChartCaptions::kFreeze));
    m_bnExportPng->setText(translate(ChartCaptions::kExportPng));
    m_bnExportSvg->setText(translate(ChartCaptions::kExportSvg));
    m_bnClose->setText(translate(ChartCaptions::kClose));
    m_histogram->setEmptyText(translate(ChartCaptions::kNotEnoughData));
}

void dlgControlChart::setRange(const QDateTime &since, const QDateTime &until)
{
    m_since = since;
    m_until = until;
    m_chkLatest->setChecked(!until.isValid());
    m_plot->forgetTimeRange();
    refresh();
}

void dlgControlChart::refresh()
{
    reportFailures(m_errors, "dlgControlChart.refresh", [this] {
        m_snapshot = spc::ChartSnapshot::load(*m_database, m_snapshot.characteristic, m_since,
                                              m_until, spc::RuleSet::defaults());
        const spc::Chart &chart = m_snapshot.chart;
        spc::Chart shown;
        if (chart.status == spc::ChartStatus::Ready)
            shown = chart;
        shown.type = chart.type;
        m_plot->setChart(shown, ControlChartPlot::captionsFor(chart.type, m_language));
        if (!chart.points.empty()) {
            if (!m_since.isValid())
                m_dtpSince->setDateTime(chart.points.front().dateTime);
            if (!m_until.isValid())
                m_dtpUntil->setDateTime(chart.points.back().dateTime);
        }
        m_lblLimits->setText(translate(m_snapshot.frozenLimits ? ChartCaptions::kFrozenLimits
                                                               : ChartCaptions::kWindowLimits));
        showCapability();
        showHistogram();
    });
}

void dlgControlChart::showCapability()
{
    const spc::CapabilityFigures &f = m_snapshot.capability;
    const auto number = [this](double value) { return locale().toString(value, 'g', 4); };
    const auto estimate = [&](const std::optional<spc::Estimate> &e) {
        if (!e)
            return QString();
        return QStringLiteral("%1  [%2; %3]")
            .arg(number(e->value), number(e->low), number(e->high));
    };
    m_lblSubgroups->setText(QString::number(m_snapshot.subgroups));
    const bool any = f.values > 0;
    // The mean in the values' own digits, the spreads and indices to four.
    m_lblMean->setText(any ? locale().toString(f.mean, 'g', 6) : QString());
    m_lblSigmaWithin->setText(f.sigmaWithin > 0 ? number(f.sigmaWithin) : QString());
    m_lblSigmaOverall->setText(f.sigmaOverall > 0 ? number(f.sigmaOverall) : QString());
    if (!f.enoughData) {
        for (QLabel *label : {m_lblCp, m_lblCpk, m_lblPp, m_lblPpk})
            label->setText(translate(ChartCaptions::kNotEnoughData));
    } else {
        m_lblCp->setText(estimate(f.cp));
        m_lblCpk->setText(estimate(f.cpk));
        m_lblPp->setText(estimate(f.pp));
        m_lblPpk->setText(estimate(f.ppk));
    }
    m_lblPpm->setText(any ? locale().toString(f.ppmObserved, 'f', 0) : QString());
}

void dlgControlChart::showHistogram()
{
    const std::vector<double> &values = m_snapshot.values;
    const spc::SpecificationLimits &spec = m_snapshot.specification;
    m_histogram->setAutoRefresh(false);
    if (!values.empty()) {
        // A limit the part does not have is drawn at the end of the values on its side.
        const auto [low, high] = std::minmax_element(values.begin(), values.end());
        const double lower = spec.lower.value_or(std::min(*low, spec.upper.value_or(*low)));
        const double upper = spec.upper.value_or(std::max(*high, lower));
        m_histogram->setLimits(lower, upper);
        m_histogram->setWarningLower(lower);
        m_histogram->setWarningUpper(upper);
    }
    m_histogram->setValues(QVector<double>(values.begin(), values.end()));
    m_histogram->Refresh();
}

void dlgControlChart::bnShow_Click()
{
    reportFailures(m_errors, "dlgControlChart.bnShow_Click", [this] {
        setRange(m_dtpSince->dateTime(),
                 m_chkLatest->isChecked() ? QDateTime() : m_dtpUntil->dateTime());
    });
}

void dlgControlChart::bnFreeze_Click()
{
    reportFailures(m_errors, "dlgControlChart.bnFreeze_Click", [this] {
        const auto [from, until] = m_plot->visibleRange();
        const QString format = QStringLiteral("yyyy-MM-dd HH:mm");
        const QString title = translate(ChartCaptions::kControlChart);
        if (!m_messages.question(title, translate(ChartCaptions::kFreezeQuestion)
                                            .arg(from.toString(format), until.toString(format))))
            return;
        const spc::Chart chart = spc::ChartSnapshot::freeze(*m_database, m_snapshot.characteristic,
                                                            from, until, m_clock.now());
        if (chart.status != spc::ChartStatus::Ready) {
            m_messages.critical(title, translate(ChartCaptions::kNotEnoughData));
            return;
        }
        refresh();
    });
}

void dlgControlChart::exportChart(const QString &suffix)
{
    QString file = m_chooseFile(suffix);
    if (file.isEmpty())
        return;
    // The picture's kind follows the name, which the user may have typed without it.
    if (!file.endsWith(u'.' + suffix, Qt::CaseInsensitive))
        file += u'.' + suffix;
    if (!m_plot->exportTo(file, kExportSize))
        m_messages.critical(translate(ChartCaptions::kControlChart),
                            translate(ChartCaptions::kExportFailed).arg(file));
}

void dlgControlChart::bnExportPng_Click()
{
    reportFailures(m_errors, "dlgControlChart.bnExportPng_Click",
                   [this] { exportChart(QStringLiteral("png")); });
}

void dlgControlChart::bnExportSvg_Click()
{
    reportFailures(m_errors, "dlgControlChart.bnExportSvg_Click",
                   [this] { exportChart(QStringLiteral("svg")); });
}

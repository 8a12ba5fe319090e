#include "ChartPicture.h"

#include "platform/ProgramError.h"

#ifdef CORVANE_HAVE_CHARTS
#include "platform/qlxLanguage.h"
#include "spc/widgets/ControlChartPlot.h"
#endif

bool ChartPicture::available()
{
#ifdef CORVANE_HAVE_CHARTS
    return true;
#else
    return false;
#endif
}

void ChartPicture::write(const spc::Chart &chart, const QString &fileName)
{
    const QString location = QStringLiteral("ChartPicture.write");
    if (!fileName.endsWith(QStringLiteral(".png"), Qt::CaseInsensitive) &&
        !fileName.endsWith(QStringLiteral(".svg"), Qt::CaseInsensitive))
        throw ProgramError::raised(
            QStringLiteral("%1: the picture's name ends in .png or .svg").arg(fileName), location);
#ifdef CORVANE_HAVE_CHARTS
    const QSize kPictureSize(1400, 800);
    ControlChartPlot plot;
    plot.resize(kPictureSize);
    plot.setChart(chart, ControlChartPlot::captionsFor(chart.type, qlxLanguage()));
    if (!plot.exportTo(fileName, kPictureSize))
        throw ProgramError::raised(QStringLiteral("%1 cannot be written").arg(fileName), location);
#else
    Q_UNUSED(chart)
    throw ProgramError::raised(QStringLiteral("this build of corvane-spc draws no charts "
                                              "(it was built without QCustomPlot): use --csv"),
                               location);
#endif
}

#include "WidgetErrorReport.h"

#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcStatsWidgets, "corvane.stats.widgets")

void WidgetErrorReport::Show(const QString &location, qint32 number, const QString &description,
                             const QString &source)
{
    qCWarning(lcStatsWidgets).noquote()
        << location << number << description << QStringLiteral("(%1)").arg(source);
}

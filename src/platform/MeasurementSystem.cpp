#include "MeasurementSystem.h"

#include <QSettings>

MeasurementSystem regionalMeasurementSystem(const QLocale &locale)
{
    return locale.measurementSystem() == QLocale::MetricSystem ? MeasurementSystem::Metric
                                                                : MeasurementSystem::US;
}

MeasurementSystem readMeasurementSystem(const QString &preferencesPath,
                                        MeasurementSystem regionalDefault)
{
    const QSettings preferences(preferencesPath, QSettings::IniFormat);
    bool isNumber = false;
    const int value = preferences.value(QStringLiteral("PREFERENCES/MEASUREMENT_SYSTEM"))
                          .toString()
                          .trimmed()
                          .toInt(&isNumber);
    if (isNumber && value == 0)
        return MeasurementSystem::Metric;
    if (isNumber && value == 1)
        return MeasurementSystem::US;
    return regionalDefault;
}

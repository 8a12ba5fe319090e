#include "MeasurementSystem.h"

#include <QSettings>

MeasurementSystem regionalMeasurementSystem(const QLocale &locale)
{
    // Qt reports British English as its own "imperial" system, yet British plants measure
    // welds in millimetres; only US customary units mean inches and pounds.
    return locale.measurementSystem() == QLocale::ImperialUSSystem ? MeasurementSystem::US
                                                                   : MeasurementSystem::Metric;
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

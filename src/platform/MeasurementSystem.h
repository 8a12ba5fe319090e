#pragma once

#include <QLocale>
#include <QString>

// The program-wide unit system: read once at start from the preferences file and handed
// to everything that scales or labels values.
enum class MeasurementSystem {
    Metric = 0, // millimetres and newtons
    US = 1,     // inches and pounds
};

// The user's regional unit system: inches and pounds for US customary locales, metric for
// all others, British English included.
MeasurementSystem regionalMeasurementSystem(const QLocale &locale = QLocale::system());

// Reads "MEASUREMENT_SYSTEM" in section "PREFERENCES" of the preferences (INI) file.
// 0 and 1 are taken as they stand; a missing file or key, text, or any other number
// gives the regional default.
MeasurementSystem readMeasurementSystem(const QString &preferencesPath,
                                        MeasurementSystem regionalDefault);

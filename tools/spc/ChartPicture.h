#pragma once

#include "spc/ControlChart.h"

#include <QString>

// Draws a characteristic's pair of control charts into a PNG or SVG file (by the name's
// suffix), as the control-chart window shows them. Needs a QApplication; throws a
// ProgramError when the file cannot be written or this build draws no charts.
class ChartPicture
{
public:
    static bool available();
    static void write(const spc::Chart &chart, const QString &fileName);
};

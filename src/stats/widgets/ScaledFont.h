#pragma once

#include <QFont>

// A font factor times the size of the given one, whether that is set in points or in
// pixels, for the large figures an engineer reads from across the cell.
inline QFont scaledFont(QFont font, double factor, bool bold)
{
    if (font.pointSizeF() > 0)
        font.setPointSizeF(font.pointSizeF() * factor);
    else
        font.setPixelSize(qRound(font.pixelSize() * factor));
    font.setBold(bold);
    return font;
}

#pragma once

#include <QColor>

// Colours as the configurations file and the meters hold them: 24-bit values in
// blue-green-red order, so 255 is red, 65280 green and 65535 yellow.
namespace BgrColor {

inline constexpr quint32 kBlack = 0;
inline constexpr quint32 kRed = 255;
inline constexpr quint32 kGreen = 65280;
inline constexpr quint32 kYellow = 65535;

inline QColor toColor(quint32 bgr)
{
    return QColor(int(bgr & 0xFF), int((bgr >> 8) & 0xFF), int((bgr >> 16) & 0xFF));
}

inline quint32 fromColor(const QColor &color)
{
    const QRgb rgb = color.rgb();
    return quint32(qRed(rgb)) | (quint32(qGreen(rgb)) << 8) | (quint32(qBlue(rgb)) << 16);
}

} // namespace BgrColor

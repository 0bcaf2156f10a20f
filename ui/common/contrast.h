#pragma once

#include <QColor>

namespace qn {

// For what has to be noticed: a running recording, a warning, an error.
constexpr QColor kAlarmColour(0xd3, 0x2f, 0x2f);

// Least contrast ratios of WCAG 2.1 for a text and for a part of a picture.
constexpr double kTextContrast = 4.5;
constexpr double kPictureContrast = 3.0;

// The colour itself where it stands out from the background by that ratio, else the nearest one on
// its way to black or white that does.
QColor legible(const QColor& color, const QColor& background, double ratio);

} // namespace qn

#pragma once

#include <QColor>

namespace qn {

// Marks what must be noticed: a running recording, a warning, an error.
constexpr QColor kAlarmColour(0xd3, 0x2f, 0x2f);

// The least contrast that WCAG 2.1 asks of text and of graphics.
constexpr double kTextContrast = 4.5;
constexpr double kPictureContrast = 3.0;

// `color` if its contrast with the background is at least `ratio`, otherwise the first colour on
// the way from it to black or white that has it.
QColor legible(const QColor& color, const QColor& background, double ratio);

} // namespace qn

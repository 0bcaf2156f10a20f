#pragma once

#include <QtGlobal>

namespace qn {

// Samples per second of the timeline and of the encoder's input.
inline constexpr qint32 kTimelineRate = 48000;

} // namespace qn

#pragma once

#include <QtGlobal>

namespace qn {

// Samples per second of the timeline, and so of what the encoder gets.
inline constexpr qint32 kTimelineRate = 48000;

} // namespace qn

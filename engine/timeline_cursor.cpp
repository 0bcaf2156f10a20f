#include "engine/timeline_cursor.h"

#include "engine/timeline_rate.h"

#include <cstdlib>

namespace qn {
namespace {

constexpr qint64 kJump = kTimelineRate / 50 + 1;   // more than 20 ms of samples
constexpr qint64 kDrift = kTimelineRate / 100 + 1; // more than 10 ms
constexpr qint64 kNudgeInterval = kTimelineRate;   // one second

} // namespace

void TimelineCursor::follow(qint64 t) {
    const qint64 off = std::abs(t - next);
    if (next == -1 || off >= kJump) {
        next = t;
        anchor = t;
    } else if (off >= kDrift && t - anchor >= kNudgeInterval) {
        next += t > next ? 1 : -1;
        anchor = t;
    }
}

} // namespace qn

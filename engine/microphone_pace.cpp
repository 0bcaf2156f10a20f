#include "engine/microphone_pace.h"

#include <algorithm>

namespace qn {
namespace {

constexpr qint64 kMs = 1'000'000;
constexpr qint64 kShortestPeriod = 15 * kMs;
constexpr qint64 kLongestPeriod = 100 * kMs;
constexpr qint64 kMostAwaited = 200 * kMs; // still comes in time to be mixed
constexpr qint64 kRetry = 5 * kMs;
constexpr qint64 kPatience = 50 * kMs; // a server's cycle is 43 ms at most
constexpr qint64 kPunctual = 5 * kMs;
// Looks come earlier by this part of a period, until one is in vain: follows a microphone whose
// clock is fast.
constexpr qint64 kEarlier = 1000;

} // namespace

bool MicrophonePace::isTime(qint64 now) {
    if (period == 0 || now - next <= kPunctual)
        return true;
    const qint64 wait = ((now - expected) / period + 1) * period;
    if (awaited + wait > kMostAwaited)
        return true;
    awaited += wait;
    expected += wait;
    next = expected + period / kEarlier; // none of the packets may be missing then
    return false;
}

void MicrophonePace::found(qint64 now, qint64 duration) {
    // Packets that are smaller, late or in part lost may come in another rhythm from now on.
    const bool isInRhythm = duration >= awaited - kRetry && now - expected <= kPatience;
    if (duration == 0 || (period > 0 && !isInRhythm)) {
        next = now + kRetry;
        if (duration > 0)
            period = awaited = 0;
        return;
    }
    const qint64 packets = (kShortestPeriod + duration - 1) / duration;
    period = awaited = std::min(packets * duration, kLongestPeriod);
    next = expected = next + period - period / kEarlier;
}

} // namespace qn

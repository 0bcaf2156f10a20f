#include "engine/microphone_pace.h"

#include <algorithm>

namespace qn {
namespace {

constexpr qint64 kMs = 1'000'000;
constexpr qint64 kShortestPeriod = 15 * kMs; // each poll wakes the processor
constexpr qint64 kLongestPeriod = 128 * kMs; // the longest packets: 4096 bytes at 16 kHz
constexpr qint64 kMostAmount = 200 * kMs;    // the mix is made 250 ms behind
constexpr qint64 kRetry = 5 * kMs;
constexpr qint64 kPunctual = 10 * kMs; // both together are within the 20 ms that the mixer bears
constexpr qint64 kTolerance = 5 * kMs; // of an amount: packets differ by some frames
constexpr qint64 kPatience = 50 * kMs; // a server's cycle is 43 ms at most
// Polls come earlier by this part of a period, until one is in vain: follows a microphone whose
// clock is fast.
constexpr qint64 kEarlier = 1000;

} // namespace

bool MicrophonePace::shouldRead(qint64 now) {
    if (period == 0 || now - next <= kPunctual)
        return true;
    const qint64 wait = ((now - dueAt) / period + 1) * period;
    if (dueAmount + wait > kMostAmount)
        return true;
    dueAmount += wait;
    dueAt += wait;
    next = dueAt + kRetry; // so that the last packet is there too
    return false;
}

void MicrophonePace::found(qint64 now, qint64 duration) {
    // Packets that are smaller, late or in part lost may come in another rhythm from now on.
    const bool isInRhythm = duration >= dueAmount - kTolerance && now - dueAt <= kPatience;
    if (duration == 0 || (period > 0 && !isInRhythm)) {
        next = now + kRetry;
        if (duration > 0)
            period = dueAmount = 0;
        return;
    }
    if (dueAmount == period) { // no poll was left out: this is what one finds, and when
        const qint64 packets = (kShortestPeriod + duration - 1) / duration;
        period = std::min(packets * duration, kLongestPeriod);
        dueAt = next;
    }
    dueAmount = period;
    dueAt += period - period / kEarlier;
    next = dueAt;
}

} // namespace qn

#include "engine/microphone_pace.h"

#include <algorithm>

namespace qn {
namespace {

constexpr qint64 kMs = 1'000'000;
constexpr qint64 kShortestPeriod = 15 * kMs; // each poll wakes the processor
constexpr qint64 kLongestPeriod = 128 * kMs; // the longest packets: 4096 bytes at 16 kHz
constexpr qint64 kMostAmount = 200 * kMs;    // the mix is made 250 ms behind
constexpr qint64 kRetry = 5 * kMs;
constexpr qint64 kPunctual = 10 * kMs;
constexpr qint64 kBorne = 20 * kMs;    // what is later than this, the mixer moves on its timeline
constexpr qint64 kTolerance = 5 * kMs; // of an amount: packets differ by some frames
// Readings come earlier by this part of a period, until one is in vain: follows a microphone whose
// clock is fast.
constexpr qint64 kEarlier = 1000;

} // namespace

bool MicrophonePace::shouldRead(qint64 now, qint64 waiting) {
    if (period == 0) {
        if (waiting == 0) {
            next = now + kRetry;
            return false;
        }
        const qint64 packets = (kShortestPeriod + waiting - 1) / waiting;
        period = std::min(packets * waiting, kLongestPeriod);
        expect();
        return true;
    }
    const bool isComplete = waiting >= dueAmount - kTolerance;
    const qint64 late = now - dueAt;
    if (late > kPunctual && putOff(late, isComplete))
        return false;
    if (isComplete && late <= kBorne && dueAmount <= 2 * period) {
        expect();
        return true;
    }
    next = now + kRetry;
    if (!isComplete && late <= kLongestPeriod)
        return false;
    period = 0; // packets were lost, or come in another rhythm from now on
    return true;
}

// Waits for another packet, unless the first one would then be too old to be mixed.
bool MicrophonePace::putOff(qint64 late, bool isComplete) {
    const qint64 wait = (late / period + 1) * period;
    if (dueAmount + wait > kMostAmount)
        return false;
    dueAmount += wait;
    dueAt += isComplete ? wait : wait + kRetry;
    next = dueAt;
    return true;
}

void MicrophonePace::expect() {
    dueAmount = period;
    dueAt = next + period - period / kEarlier;
    next = dueAt;
}

} // namespace qn

#include "capture/linux/smoothed_clock.h"

#include <algorithm>

namespace qn {

namespace {

constexpr qint64 kMillisecond = 1'000'000;

// Long enough that a late packet does not matter, and well within the recorder's delay of 250 ms.
constexpr qint64 kSettlingNs = 120 * kMillisecond;

// The server may still be linking the stream for this long.
constexpr qint64 kStartUpNs = 40 * kMillisecond;

// The recorder's delay: a packet later than this would miss the recording anyway.
constexpr qint64 kLostNs = 250 * kMillisecond;

// How often the times are corrected for a device that runs slow or has lost a cycle. Longer than a
// stall, so that a stall moves nothing.
constexpr qint64 kPeriodNs = 500 * kMillisecond;

} // namespace

bool SmoothedClock::packet(qint64 frames, qint64 arrivalNs) {
    const qint64 earliestNs = arrivalNs - durationNs(received + frames, sampleRate);
    if (isSettled && earliestNs - originNs > kLostNs)
        return false;
    if (received == 0)
        firstArrivalNs = arrivalNs;
    received += frames;
    if (isSettled)
        follow(earliestNs, arrivalNs);
    else
        settle(earliestNs, arrivalNs);
    return true;
}

void SmoothedClock::settle(qint64 earliestNs, qint64 arrivalNs) {
    const bool startsCounting = periodStartNs == 0 && arrivalNs - firstArrivalNs >= kStartUpNs;
    if (startsCounting)
        periodStartNs = arrivalNs;
    originNs = startsCounting ? earliestNs : std::min(originNs, earliestNs);
    isSettled = arrivalNs - firstArrivalNs >= kSettlingNs;
}

void SmoothedClock::follow(qint64 earliestNs, qint64 arrivalNs) {
    smallestSlackNs = std::min(smallestSlackNs, earliestNs - originNs);
    originNs = std::min(originNs, earliestNs);
    if (arrivalNs - periodStartNs < kPeriodNs)
        return;
    originNs += std::max<qint64>(smallestSlackNs, 0);
    smallestSlackNs = std::numeric_limits<qint64>::max();
    periodStartNs = arrivalNs;
}

} // namespace qn

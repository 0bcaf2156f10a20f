#include "capture/linux/smoothed_clock.h"

#include <algorithm>

namespace qn {

namespace {

constexpr qint64 kMillisecond = 1'000'000;

// Long enough to see past a late packet, short against the recorder's delay of 250 ms.
constexpr qint64 kSettlingNs = 120 * kMillisecond;

// Until then the server may still be linking the stream.
constexpr qint64 kStartUpNs = 40 * kMillisecond;

// A packet later than this would miss the recording anyway.
constexpr qint64 kLostNs = 250 * kMillisecond;

// How often the times follow a device that is slower than the steady clock, or has lost a cycle;
// longer than a stall, so that a stall does not count.
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

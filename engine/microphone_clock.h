#pragma once

#include <QtGlobal>

#include <utility>

namespace qn {

// Tells when each block of an open microphone was captured, in steady-clock nanoseconds. A block is
// taken to end when it is read. But Qt asks a sound server for data every 100 ms only: one that
// just missed a reading looks 100 ms late, perhaps every other one, and all of these would be torn
// from the ones before. As nothing is read before it was captured, a late block simply follows on.
class MicrophoneClock {
public:
    // When the next block starts; by the time of its reading alone that would be at `latestNs`.
    qint64 startOf(qint64 latestNs, qint64 lengthNs) {
        const qint64 lateNs = latestNs - nextNs;
        if (lateNs < 0 || lateNs > kGapNs)
            nextNs = latestNs;
        return std::exchange(nextNs, nextNs + lengthNs);
    }

private:
    static constexpr qint64 kGapNs = 150'000'000; // whatever is later comes after a gap

    qint64 nextNs = 0;
};

} // namespace qn

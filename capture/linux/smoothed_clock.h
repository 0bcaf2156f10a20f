#pragma once

#include "core/audio_block.h"

#include <limits>

namespace qn {

// Tells when each frame of one stream was played. Packets arrive late and in bursts, but never
// before their last frame was played, so the packet with the least delay sets the times. Packets of
// the first 40 ms stop counting after that, because servers lose a cycle after the very first one.
// Frames are numbered from 0; times are steady-clock nanoseconds.
class SmoothedClock {
public:
    explicit SmoothedClock(qint32 framesPerSecond) : sampleRate(framesPerSecond) {}

    // Takes the next packet into account. False if it came so late, after a pause or a long stall,
    // that it can't continue the stream: a new clock must start with it.
    bool packet(qint64 frames, qint64 arrivalNs);

    // Whether the times can be relied on; until then the caller holds the frames back.
    bool settled() const { return isSettled; }

    qint64 timeOf(qint64 frame) const { return originNs + durationNs(frame, sampleRate); }

private:
    void settle(qint64 earliestNs, qint64 arrivalNs);
    void follow(qint64 earliestNs, qint64 arrivalNs);

    qint32 sampleRate;
    qint64 received = 0; // frames
    qint64 originNs = std::numeric_limits<qint64>::max();
    qint64 firstArrivalNs = 0;
    qint64 periodStartNs = 0;                                    // 0 during the start-up
    qint64 smallestSlackNs = std::numeric_limits<qint64>::max(); // in the current period
    bool isSettled = false;
};

} // namespace qn

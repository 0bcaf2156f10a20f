#pragma once

#include "core/audio_block.h"

#include <limits>

namespace qn {

// Tells when each frame of one stream was played, from the arrival times of its packets, which
// come late and in bursts but never before their last frame was played: the earliest arrival
// counts. Servers lose a cycle after the very first packet, so that one counts only at first.
// Frames are numbered from 0 since the construction; times are steady-clock nanoseconds.
class SmoothedClock {
public:
    explicit SmoothedClock(qint32 framesPerSecond) : sampleRate(framesPerSecond) {}

    // Notes the next packet. False: the packet does not continue the stream (it is far too late,
    // after a pause or a long stall); nothing was noted, and a new clock has to start with it.
    bool packet(qint64 frames, qint64 arrivalNs);

    // True when enough packets have arrived for times that stay; until then hold the frames back.
    bool settled() const { return isSettled; }

    qint64 timeOf(qint64 frame) const { return originNs + durationNs(frame, sampleRate); }

private:
    void settle(qint64 earliestNs, qint64 arrivalNs);
    void follow(qint64 earliestNs, qint64 arrivalNs);

    qint32 sampleRate;
    qint64 received = 0; // frames
    qint64 originNs = std::numeric_limits<qint64>::max();
    qint64 firstArrivalNs = 0;
    qint64 periodStartNs = 0; // 0 while packets of the start-up count
    qint64 smallestSlackNs = std::numeric_limits<qint64>::max(); // of the running period
    bool isSettled = false;
};

} // namespace qn

#pragma once

#include <QtGlobal>

namespace qn {

// Chooses when to read a microphone whose data come in packets. A block is stamped as ending when
// it is read, so each must be read equally long after it came: once per packet, a little earlier
// each time, and again soon while the packet is missing. At nextPoll() ask shouldRead, read, and
// tell found. All times are nanoseconds of the steady clock.
class MicrophonePace {
public:
    explicit MicrophonePace(qint64 now) : next(now) {}

    qint64 nextPoll() const { return next; }
    // When `now` is too late for the right stamp, puts the reading off to the next packet's time,
    // unless the first one would then be too old to be mixed.
    bool shouldRead(qint64 now);
    // How long the audio is that was read at `now`; 0 for none.
    void found(qint64 now, qint64 duration);

private:
    qint64 next;
    qint64 dueAt = 0;     // when the next packet should be there
    qint64 dueAmount = 0; // how much should have come by then
    qint64 period = 0;    // between two polls; 0 while the rhythm is unknown
};

} // namespace qn

#pragma once

#include <QtGlobal>

namespace qn {

// Chooses when to read a microphone whose data come in packets. A block is stamped as ending when
// it is read, so each must be read equally long after it came: once per packet, a little earlier
// each time, and together with the next packet when that moment was missed. All times are
// nanoseconds of the steady clock.
class MicrophonePace {
public:
    explicit MicrophonePace(qint64 now) : next(now) {}

    qint64 nextPoll() const { return next; }
    // Whether to read now, when audio of the duration `waiting` can be read. To be asked at
    // nextPoll(); what is found then is to be read at once.
    bool shouldRead(qint64 now, qint64 waiting);

private:
    bool putOff(qint64 late, bool isComplete);
    void expect();

    qint64 next;
    qint64 dueAt = 0;     // when the next packet should be there
    qint64 dueAmount = 0; // how much should be waiting by then
    qint64 period = 0;    // between two readings; 0 while the rhythm is unknown
};

} // namespace qn

#pragma once

#include <QtGlobal>

namespace qn {

// Chooses when to read the microphone. A block is taken to end when it is read, so all blocks must
// be read equally late after they arrived: a block as long as the last one is expected that much
// later, and is waited for if need be. All times are nanoseconds of the steady clock.
class MicrophonePace {
public:
    explicit MicrophonePace(qint64 now) : next(now) {}

    qint64 nextLook() const { return next; }
    // Whether to read at `now`. A look that comes late is left out if it may be: the next one finds
    // both blocks, at the right time.
    bool isTime(qint64 now);
    // What was read at `now`; 0 for nothing.
    void found(qint64 now, qint64 duration);

private:
    qint64 next;
    qint64 expected = 0; // when the next block should be there
    qint64 period = 0;   // between two looks; 0 until a packet has told it
    qint64 awaited = 0;  // how much should be there then
};

} // namespace qn

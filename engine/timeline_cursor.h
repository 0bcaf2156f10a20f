#pragma once

#include <QtGlobal>

namespace qn {

// Where a source's next sample goes on the timeline. Blocks follow one another seamlessly in spite
// of jittering timestamps; only drift and real gaps move the cursor.
struct TimelineCursor {
    qint64 next = -1;  // timeline index; -1 while unset
    qint64 anchor = 0; // timeline index at which `next` was last set or nudged

    // A block starts now whose timestamp says index `t`: jumps there when unset or more than 20 ms
    // off, and steps one sample towards it when more than 10 ms off, at most once a second.
    void follow(qint64 t);
};

} // namespace qn

#pragma once

#include <QtGlobal>

namespace qn {

// Where a source's next sample goes on the timeline. Jittering timestamps leave it alone, so that
// blocks join without gaps; only drift and real gaps move it.
struct TimelineCursor {
    qint64 next = -1;  // timeline index; -1 while unset
    qint64 anchor = 0; // timeline index at which `next` was last set or nudged

    // To be called before each block, with the index `t` of its timestamp. Jumps there if unset or
    // more than 20 ms off; steps one sample towards it if more than 10 ms off, at most once a
    // second.
    void follow(qint64 t);
};

} // namespace qn

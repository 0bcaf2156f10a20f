#pragma once

#include <QtGlobal>

namespace qn {

// Tells when one side of a call has been silent for so long that something may be wrong.
class SilenceWatch {
public:
    // Begins anew, for instance after a pause.
    void restart(qint64 nowMs) { heardMs = nowMs; }

    // A level, full scale 1.0. Returns how long the side has been silent, once that is 10 s; else
    // 0.
    qint64 update(float level, qint64 nowMs);

private:
    qint64 heardMs = 0; // when there was a sound last
};

} // namespace qn

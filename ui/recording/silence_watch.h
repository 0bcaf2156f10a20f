#pragma once

#include <QtGlobal>

namespace qn {

// Tells when one side of a call has been silent for so long that something may be wrong.
class SilenceWatch {
public:
    // Starts counting anew, for instance after a pause.
    void restart(qint64 nowMs) { heardMs = nowMs; }

    // Takes a level, full scale 1.0. Returns for how many ms the side has been silent; 0 below 10
    // s.
    qint64 update(float level, qint64 nowMs);

private:
    qint64 heardMs = 0; // time of the last sound
};

} // namespace qn

#pragma once

#include <QtGlobal>

namespace qn {

// The whole frames per second of a stream; 0 for what no integer holds (NaN, infinity, overflow).
qint32 wholeRate(double sampleRate);

// Translates a time of the host clock into the steady clock, given both clocks' present. All in
// nanoseconds.
qint64 hostToSteady(quint64 hostNs, quint64 hostNowNs, qint64 steadyNowNs);

// When a block began that has ended just now. The rate is not 0.
qint64 startOfEndedBlock(qint64 steadyNowNs, qint64 frames, qint32 rate);

} // namespace qn

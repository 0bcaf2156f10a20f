#include "capture/macos/capture_time.h"

#include <limits>

namespace qn {

qint32 wholeRate(double sampleRate) {
    using Limits = std::numeric_limits<qint32>;
    const bool fits = sampleRate > Limits::min() - 1.0 && sampleRate < Limits::max() + 1.0;
    return fits ? static_cast<qint32>(sampleRate) : 0;
}

qint64 hostToSteady(quint64 hostNs, quint64 hostNowNs, qint64 steadyNowNs) {
    // Unsigned, because a device may stamp its buffers with anything.
    return static_cast<qint64>(static_cast<quint64>(steadyNowNs) - hostNowNs + hostNs);
}

qint64 startOfEndedBlock(qint64 steadyNowNs, qint64 frames, qint32 rate) {
    return steadyNowNs - frames * 1'000'000'000 / rate;
}

} // namespace qn

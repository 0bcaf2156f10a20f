#include "core/audio_block.h"

#include <chrono>

namespace qn {

qint64 steadyNowNs() {
    const std::chrono::nanoseconds now = std::chrono::steady_clock::now().time_since_epoch();
    return now.count();
}

qint64 durationNs(qint64 frames, qint32 sampleRate) {
    constexpr qint64 kSecond = 1'000'000'000;
    // Whole seconds separately, because frames * kSecond overflows after 53 hours at 48 kHz.
    return frames / sampleRate * kSecond + frames % sampleRate * kSecond / sampleRate;
}

} // namespace qn

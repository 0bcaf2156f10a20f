#include "ui/playback/peak_accumulator.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace qn {

namespace {

constexpr qsizetype kMostPeaks = 100000;

// The largest finite magnitude. Without the sign bit, floats compare like the integers of the same
// bits, with infinity and NaN above all others. That needs no branch, so the loop vectorises.
float loudest(const float* samples, qsizetype count) {
    constexpr qint32 kInfinity = 0x7f800000;
    qint32 result = 0;
    for (qsizetype i = 0; i < count; ++i) {
        const qint32 magnitude = std::bit_cast<qint32>(samples[i]) & 0x7fffffff;
        result = std::max(result, magnitude < kInfinity ? magnitude : 0);
    }
    return std::bit_cast<float>(result);
}

} // namespace

void PeakAccumulator::add(const float* samples, qsizetype count) {
    while (count > 0) {
        const qsizetype part = std::min(count, bucketSize - bucketCount);
        bucketPeak = std::max(bucketPeak, loudest(samples, part));
        bucketCount += part;
        samples += part;
        count -= part;
        if (bucketCount == bucketSize)
            closeBucket();
    }
}

QList<float> PeakAccumulator::finish() {
    if (bucketCount > 0)
        peaks.append(std::min(bucketPeak, 1.0F));
    return std::exchange(peaks, {});
}

void PeakAccumulator::closeBucket() {
    peaks.append(std::min(bucketPeak, 1.0F));
    bucketPeak = 0.0F;
    bucketCount = 0;
    if (peaks.size() >= kMostPeaks)
        halve();
}

void PeakAccumulator::halve() {
    const qsizetype half = peaks.size() / 2;
    for (qsizetype i = 0; i < half; ++i)
        peaks[i] = std::max(peaks[2 * i], peaks[2 * i + 1]);
    peaks.resize(half);
    bucketSize *= 2;
}

} // namespace qn

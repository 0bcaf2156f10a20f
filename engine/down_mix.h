#pragma once

#include "core/audio_block.h"

#include <array>
#include <span>

namespace qn {

// How much each channel of an interleaved stream counts in its mono mix.
struct DownMixWeights {
    std::array<float, kMaxChannels> channel;
    double sum; // the divisor; 0 if no channel counts
};

// Weights by speaker position (WAVE channel-mask bits in channel order; 0 = unknown, all equal).
// Centre and surround count 1/sqrt(2), the low-frequency channel not at all.
DownMixWeights downMixWeights(int channels, quint64 channelMask);

// Weighted mean of each frame, one per element of `mono`. Samples that aren't finite count as 0.
void downMix(std::span<const float> interleaved, int channels, const DownMixWeights& weights,
             std::span<float> mono);

} // namespace qn

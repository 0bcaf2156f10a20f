#include "engine/down_mix.h"

#include <bit>
#include <cmath>
#include <limits>

namespace qn {
namespace {

constexpr float kMinus3Db = 0.70710677F;

float weightOfPosition(int bit) {
    switch (bit) {
    case 0: // front left
    case 1: // front right
        return 1.0F;
    case 3: // low frequency
        return 0.0F;
    default:
        return kMinus3Db;
    }
}

// Written without a branch, so that loops over it vectorise.
float finiteOrZero(float sample) {
    return std::abs(sample) <= std::numeric_limits<float>::max() ? sample : 0.0F;
}

bool isPlainMean(const DownMixWeights& weights, int channels) {
    for (int ch = 0; ch < channels; ++ch)
        if (weights.channel[static_cast<size_t>(ch)] != 1.0F)
            return false;
    return true;
}

void downMixAny(const float* in, size_t channels, const DownMixWeights& weights,
                std::span<float> mono) {
    for (float& out : mono) {
        double sum = 0;
        for (size_t ch = 0; ch < channels; ++ch)
            sum += static_cast<double>(finiteOrZero(in[ch])) *
                   static_cast<double>(weights.channel[ch]);
        out = static_cast<float>(sum / weights.sum);
        in += channels;
    }
}

} // namespace

DownMixWeights downMixWeights(int channels, quint64 channelMask) {
    DownMixWeights weights;
    weights.channel.fill(1.0F);
    const auto count = static_cast<size_t>(channels);
    for (size_t ch = 0; ch < count && channelMask != 0; ++ch) {
        weights.channel[ch] = weightOfPosition(std::countr_zero(channelMask));
        channelMask &= channelMask - 1; // clears the lowest bit, the position just used
    }
    weights.sum = 0;
    for (size_t ch = 0; ch < count; ++ch)
        weights.sum += static_cast<double>(weights.channel[ch]);
    return weights;
}

void downMix(std::span<const float> interleaved, int channels, const DownMixWeights& weights,
             std::span<float> mono) {
    const float* const in = interleaved.data();
    const size_t frames = mono.size();
    float* const out = mono.data();
    if (channels == 1) { // the weight cancels out
        for (size_t f = 0; f < frames; ++f)
            out[f] = finiteOrZero(in[f]);
    } else if (channels == 2 && isPlainMean(weights, channels)) {
        // Halving is exact, so adding in float gives the same as rounding a sum of doubles.
        for (size_t f = 0; f < frames; ++f)
            out[f] = 0.5F * finiteOrZero(in[2 * f]) + 0.5F * finiteOrZero(in[2 * f + 1]);
    } else {
        downMixAny(in, static_cast<size_t>(channels), weights, mono);
    }
}

} // namespace qn

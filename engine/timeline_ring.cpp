#include "engine/timeline_ring.h"

#include <algorithm>

namespace qn {
namespace {

// Splits a run where it wraps around the ring: calls part(slot, offset, length) for each piece.
template <typename Part> void forEachPart(qint64 first, size_t count, Part part) {
    auto slot = static_cast<size_t>(first % TimelineRing::kCapacity);
    for (size_t offset = 0; offset < count; slot = 0) {
        const size_t length = std::min(count - offset, size_t{TimelineRing::kCapacity} - slot);
        part(slot, offset, length);
        offset += length;
    }
}

} // namespace

TimelineRing::TimelineRing() : samples(kCapacity, 0.0F) {}

void TimelineRing::add(qint64 first, std::span<const float> run) {
    forEachPart(first, run.size(), [&](size_t slot, size_t offset, size_t length) {
        float* const held = &samples[slot];
        const float* const added = &run[offset];
        for (size_t k = 0; k < length; ++k)
            held[k] += added[k];
    });
}

void TimelineRing::take(qint64 first, std::span<float> mix) {
    forEachPart(first, mix.size(), [&](size_t slot, size_t offset, size_t length) {
        float* const held = &samples[slot];
        float* const mixed = &mix[offset];
        for (size_t k = 0; k < length; ++k)
            mixed[k] += held[k];
        std::fill_n(held, length, 0.0F);
    });
}

} // namespace qn

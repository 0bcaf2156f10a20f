#include "engine/timeline_ring.h"

#include <algorithm>

namespace qn {
namespace {

constexpr qint64 kEmpty = -1;

void addRun(float* samples, qint64* tags, qint64 first, std::span<const float> run) {
    const float* const in = run.data();
    const size_t count = run.size();
    for (size_t k = 0; k < count; ++k) {
        const qint64 index = first + static_cast<qint64>(k);
        const float held = tags[k] == index ? samples[k] : 0.0F;
        samples[k] = held + in[k];
        tags[k] = index;
    }
}

void takeRun(const float* samples, qint64* tags, qint64 first, std::span<float> mix) {
    float* const out = mix.data();
    const size_t count = mix.size();
    for (size_t k = 0; k < count; ++k) {
        const float held = tags[k] == first + static_cast<qint64>(k) ? samples[k] : 0.0F;
        out[k] += held;
        tags[k] = kEmpty;
    }
}

// Calls part(slot, index, offset, length) for each piece of a run that is contiguous in the ring.
template <typename Part> void forEachPart(qint64 first, size_t count, Part part) {
    for (size_t done = 0; done < count;) {
        const qint64 index = first + static_cast<qint64>(done);
        const qint64 slot = index % TimelineRing::kCapacity;
        const size_t length =
            std::min(count - done, static_cast<size_t>(TimelineRing::kCapacity - slot));
        part(slot, index, done, length);
        done += length;
    }
}

} // namespace

TimelineRing::TimelineRing() : samples(kCapacity, 0.0F), tags(kCapacity, kEmpty) {}

void TimelineRing::add(qint64 first, std::span<const float> run) {
    forEachPart(first, run.size(), [&](qint64 slot, qint64 index, size_t offset, size_t length) {
        addRun(samples.data() + slot, tags.data() + slot, index, run.subspan(offset, length));
    });
}

void TimelineRing::take(qint64 first, std::span<float> mix) {
    forEachPart(first, mix.size(), [&](qint64 slot, qint64 index, size_t offset, size_t length) {
        takeRun(samples.data() + slot, tags.data() + slot, index, mix.subspan(offset, length));
    });
}

} // namespace qn

#pragma once

#include <QtGlobal>

#include <span>
#include <vector>

namespace qn {

// Four seconds of one input's timeline. Index i lives in slot i mod kCapacity, and a slot holds i
// only while its tag says so. All work goes in contiguous runs, split at the ring's end.
class TimelineRing {
public:
    static constexpr qint64 kCapacity = 192'000;

    TimelineRing();

    // Puts the run at indices first..., adding to what they hold already. first >= 0, and at most
    // kCapacity long.
    void add(qint64 first, std::span<const float> run);

    // Adds the run at indices first... to `mix` and empties its slots; silence where none holds
    // its index. first >= 0.
    void take(qint64 first, std::span<float> mix);

private:
    std::vector<float> samples;
    std::vector<qint64> tags; // the timeline index in the slot, -1 when empty
};

} // namespace qn

#pragma once

#include "engine/timeline_rate.h"

#include <span>
#include <vector>

namespace qn {

// The next four seconds of one input's timeline; index i lives in slot i mod kCapacity. The caller
// adds only to the kCapacity indices from the next one to take, and takes each index once and in
// order. So a slot never mixes two indices, and an empty one holds 0.
class TimelineRing {
public:
    static constexpr qint64 kCapacity = 4 * kTimelineRate;

    TimelineRing();

    // Adds the run to the values at indices first, first + 1, ...; first >= 0.
    void add(qint64 first, std::span<const float> run);

    // Adds the values from index `first` on to `mix` and sets them to 0; first >= 0.
    void take(qint64 first, std::span<float> mix);

private:
    std::vector<float> samples;
};

} // namespace qn

#pragma once

#include "engine/timeline_rate.h"

#include <span>
#include <vector>

namespace qn {

// The next four seconds of one input's timeline; index i lives in slot i mod kCapacity. The caller
// adds only to the kCapacity indices from the next one to take, and takes each index once, so a
// slot never holds any other index: an empty slot is a 0, and no tag is needed to tell.
class TimelineRing {
public:
    static constexpr qint64 kCapacity = 4 * kTimelineRate;

    TimelineRing();

    // Adds the run to what indices first... hold already. first >= 0.
    void add(qint64 first, std::span<const float> run);

    // Adds indices first... to `mix` and empties them. first >= 0.
    void take(qint64 first, std::span<float> mix);

private:
    std::vector<float> samples;
};

} // namespace qn

#pragma once

#include "core/audio_block.h"

#include <QList>

#include <memory>

namespace qn {

// Places the blocks of two inputs on one timeline of 48 kHz mono samples by their capture times,
// and hands out the sum in order. Sample n belongs to the steady-clock time origin + n / 48000 s.
// One thread only; reset allocates the timeline, which never grows.
class TimelineMixer {
public:
    static constexpr int kMicrophone = 0;
    static constexpr int kFarSide = 1;

    TimelineMixer();
    ~TimelineMixer();

    // Starts an empty timeline; `originNs` is its steady-clock start in nanoseconds.
    void reset(qint64 originNs);

    // Ignores an unknown input and an empty or out-of-limits block; throws std::runtime_error if
    // the block can't be resampled.
    void push(int input, const AudioBlock& block);

    // The next `count` samples, clamped to +-1; 0 where no input delivered.
    QList<float> read(int count);

    // Decaying peak of the input's absolute samples; falls only while blocks arrive.
    float level(int input) const;

    // Samples read since reset.
    qint64 samplesRead() const { return position; }

private:
    struct Track;
    std::unique_ptr<Track> inputs[2];
    qint64 origin = 0;
    qint64 position = 0; // index of the next sample that read returns
};

} // namespace qn

#pragma once

#include "core/audio_block.h"

#include <QList>

#include <memory>

namespace qn {

// Places the blocks of two inputs on one timeline of 48 kHz mono samples by their capture times,
// and hands out the sum in order. Sample n is the steady-clock instant origin + n / 48000 s. One
// thread only; the timeline is allocated by reset and never grows.
class TimelineMixer {
public:
    static constexpr int kMicrophone = 0;
    static constexpr int kFarSide = 1;

    TimelineMixer();
    ~TimelineMixer();

    // Starts an empty timeline at that steady-clock time in nanoseconds.
    void reset(qint64 originNs);

    // Ignores a block that no input can hold; throws std::runtime_error when it can't be resampled.
    void push(int input, const AudioBlock& block);

    // The next `count` samples, clamped to +-1; silence where no input delivered.
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

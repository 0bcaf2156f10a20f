#pragma once

#include <QtGlobal>

#include <memory>
#include <span>
#include <vector>

struct soxr;

namespace qn {

// Converts one source's mono stream to 48 kHz, block by block. It is never flushed: what the filter
// delays at the end of the stream is dropped.
class Resampler {
public:
    // Starts a new stream if the rate differs from the last one; false if it is unchanged. Throws
    // std::runtime_error if libsoxr refuses the rate.
    bool setInputRate(qint32 rate);

    // The block at 48 kHz: `mono` itself if that is its rate, otherwise a view of this object's
    // buffer, valid until the next call. `mono` must not be null. Throws std::runtime_error.
    std::span<const float> process(std::span<const float> mono);

private:
    struct Delete {
        void operator()(soxr* stream) const;
    };
    std::unique_ptr<soxr, Delete> handle; // null at 48 kHz
    qint32 inputRate = 0;
    std::vector<float> output;
};

} // namespace qn

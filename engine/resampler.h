#pragma once

#include <QtGlobal>

#include <memory>
#include <span>
#include <vector>

struct soxr;

namespace qn {

// Converts one source's mono stream to 48 kHz, block by block. The filter's delay stays inside:
// the stream is never flushed.
class Resampler {
public:
    // Starts a new stream when the rate differs from the last one. False when it is unchanged.
    // Throws std::runtime_error when libsoxr refuses the rate.
    bool setInputRate(qint32 rate);

    // The block at 48 kHz: `mono` itself when that is its rate, else a view of this object's
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

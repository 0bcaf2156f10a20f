#pragma once

#include "core/audio_block.h"

#include <span>

namespace qn {

// Linear PCM in native byte order.
struct PcmFormat {
    quint32 bitsPerChannel = 0;
    bool isFloat = false;
    qint32 channels = 0; // 1..kMaxChannels
};

// One buffer of a capture cycle: interleaved frames of its own channels.
struct PcmBuffer {
    quint32 channels = 0; // the functions below need at least 1
    quint32 byteSize = 0;
    const void* data = nullptr; // null for silence
};

// Frames in a cycle, from the size of its first buffer; 0 if there is nothing to convert.
qint64 frameCount(std::span<const PcmBuffer> buffers, const PcmFormat& format);

// The cycle as interleaved floats of full scale +-1.0, `format.channels` values per frame. The
// channels of all buffers are placed side by side, which covers interleaved and non-interleaved
// streams alike. Reads 32- and 64-bit floats and signed 16- and 32-bit integers, from any
// alignment; other formats and missing samples become silence.
QList<float> interleave(std::span<const PcmBuffer> buffers, const PcmFormat& format, qint64 frames);

} // namespace qn

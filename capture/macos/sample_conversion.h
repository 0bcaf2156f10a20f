#pragma once

#include "core/audio_block.h"

#include <span>

namespace qn {

// Linear PCM in native byte order, as far as the conversion needs it.
struct PcmFormat {
    quint32 bitsPerChannel = 0;
    bool isFloat = false;
    qint32 channels = 0; // 1..kMaxChannels
};

// One buffer of a capture cycle: interleaved frames of its own channels.
struct PcmBuffer {
    quint32 channels = 0; // at least 1 in what the functions below get
    quint32 byteSize = 0;
    const void* data = nullptr; // null is silence
};

// Frames of a cycle, by its first buffer; 0 when there are none to convert.
qint64 frameCount(std::span<const PcmBuffer> buffers, const PcmFormat& format);

// The cycle as interleaved floats of full scale +-1.0, `format.channels` values per frame. The
// buffers' channels go side by side, so interleaved and non-interleaved streams are one case.
// What the buffers do not hold, and every unknown sample format, is silence. Reads 32- and 64-bit
// floats and signed 16- and 32-bit integers, from any alignment.
QList<float> interleave(std::span<const PcmBuffer> buffers, const PcmFormat& format, qint64 frames);

} // namespace qn

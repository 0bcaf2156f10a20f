#pragma once

#include "capture/linux/smoothed_clock.h"
#include "core/audio_block.h"

#include <functional>

namespace qn {

using BlockReceiver = std::function<void(const AudioBlock&)>;

// Cuts the packets of one stream, of whatever size, into blocks of about 20 ms with smoothed
// timestamps. One thread only.
class BlockBuilder {
public:
    // `emptyBlock` gives all of the stream's blocks their format and source key.
    BlockBuilder(AudioBlock emptyBlock, BlockReceiver whenReady);

    // Frames per block: 1024 at 48 kHz, PipeWire's usual cycle.
    static qint64 framesPerBlock(qint32 sampleRate) { return qint64(sampleRate) * 1024 / 48000; }

    // Adds a packet of interleaved samples, or of silence if `samples` is null.
    void add(const float* samples, qint64 frames, qint64 arrivalNs);

    // Hands out the samples still held back, at the end of the stream.
    void flush();

private:
    void emitBlocks(qint64 smallestFrames);

    AudioBlock format;
    BlockReceiver receiver;
    SmoothedClock clock;
    QList<float> pending;    // interleaved
    qint64 pendingFrame = 0; // number of the first pending frame in `clock`
};

} // namespace qn

#include "capture/linux/block_builder.h"

#include <algorithm>
#include <utility>

namespace qn {

BlockBuilder::BlockBuilder(AudioBlock emptyBlock, BlockReceiver whenReady)
    : format(std::move(emptyBlock)), receiver(std::move(whenReady)), clock(format.sampleRate) {}

void BlockBuilder::add(const float* samples, qint64 frames, qint64 arrivalNs) {
    if (!clock.packet(frames, arrivalNs)) {
        flush();
        clock = SmoothedClock(format.sampleRate);
        pendingFrame = 0;
        clock.packet(frames, arrivalNs);
    }
    const qsizetype count = frames * format.channels;
    if (samples)
        pending.append(QList<float>(samples, samples + count));
    else
        pending.resize(pending.size() + count);
    if (clock.settled())
        emitBlocks(framesPerBlock(format.sampleRate));
}

void BlockBuilder::flush() {
    emitBlocks(1);
}

void BlockBuilder::emitBlocks(qint64 smallestFrames) {
    const qint64 largestFrames = framesPerBlock(format.sampleRate);
    const qint64 total = pending.size() / format.channels;
    qint64 done = 0;
    while (total - done >= smallestFrames) {
        const qint64 frames = std::min(total - done, largestFrames);
        AudioBlock block = format;
        block.samples = pending.mid(done * format.channels, frames * format.channels);
        block.timestampNs = clock.timeOf(pendingFrame + done);
        receiver(block);
        done += frames;
    }
    pending.remove(0, done * format.channels);
    pendingFrame += done;
}

} // namespace qn

#pragma once

#include "core/audio_block.h"

#include <QAudioFormat>
#include <QByteArray>

#include <chrono>

namespace qn {

// Takes the whole frames out of `bytes`, which keeps a partial one for the next time, as a block
// that ends at `end`. No samples when there is no whole frame or the format is unknown.
AudioBlock takeMicrophoneBlock(QByteArray& bytes, const QAudioFormat& format,
                               std::chrono::steady_clock::time_point end);

} // namespace qn

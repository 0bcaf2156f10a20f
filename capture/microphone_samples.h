#pragma once

#include "core/audio_block.h"

#include <QAudioFormat>
#include <QByteArray>

namespace qn {

// Takes the whole frames out of `bytes`, which keeps a partial one for the next time, as a block
// that ends at `endNs`. No samples when there is no whole frame or the format is unknown.
AudioBlock takeMicrophoneBlock(QByteArray& bytes, const QAudioFormat& format, qint64 endNs);

} // namespace qn

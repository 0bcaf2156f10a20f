#pragma once

#include "core/audio_block.h"

#include <QAudioFormat>
#include <QByteArray>

namespace qn {

// Moves the whole frames in `bytes` into a block that ends at `endNs`; a partial frame stays in
// `bytes`. The block is empty if there is no whole frame or the format is unknown.
AudioBlock takeMicrophoneBlock(QByteArray& bytes, const QAudioFormat& format, qint64 endNs);

} // namespace qn

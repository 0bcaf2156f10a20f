#pragma once

#include "core/audio_format.h"

#include <QStringList>

namespace qn {

// ffmpeg's output arguments for a format. They name the container, so the file may have any suffix.
QStringList codecArguments(AudioFormat format);

} // namespace qn

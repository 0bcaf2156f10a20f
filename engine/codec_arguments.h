#pragma once

#include "core/audio_format.h"

#include <QStringList>

namespace qn {

// ffmpeg's output arguments for a format, container included, so that the file name is free.
QStringList codecArguments(AudioFormat format);

} // namespace qn

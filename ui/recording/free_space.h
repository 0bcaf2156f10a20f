#pragma once

#include "core/audio_format.h"

#include <QString>

namespace qn {

// How much more can be recorded into that folder; empty when it can't be told.
QString freeSpaceText(const QString& directory, AudioFormat format);

} // namespace qn

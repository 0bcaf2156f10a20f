#pragma once

#include "core/audio_format.h"

#include <QString>

namespace qn {

// Tells the user how much space the folder has and for how many hours it lasts; empty if unknown.
QString freeSpaceText(const QString& directory, AudioFormat format);

} // namespace qn

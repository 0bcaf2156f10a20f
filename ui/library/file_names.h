#pragma once

#include "core/audio_format.h"
#include "core/recording.h"

#include <QString>

namespace qn {

// The save dialog's filters, their order, and the one that fits a format.
QString exportFilters();
QString exportFilter(AudioFormat format);
AudioFormat formatOfFilter(const QString& filter);

// Title and start time in the recording's own zone, as the save dialog proposes it.
QString exportFileName(const Recording& recording);

// `path` with the format's extension, which it may carry already in any case.
QString withExtension(const QString& path, AudioFormat format);

// Where the repaired file of an interrupted recording goes.
QString recoveryPath(const Recording& recording);

} // namespace qn

#pragma once

#include "core/audio_format.h"
#include "core/recording.h"

#include <QString>

namespace qn {

// All filters of the save dialog, the filter of a format, and the format of a filter.
QString exportFilters();
QString exportFilter(AudioFormat format);
AudioFormat formatOfFilter(const QString& filter);

// The name that the save dialog proposes: title and start time in the recording's own zone.
QString exportFileName(const Recording& recording);

// `path` with the format's extension, unless it already ends in it, in upper or lower case.
QString withExtension(const QString& path, AudioFormat format);

// Where the repaired file of an interrupted recording goes.
QString recoveryPath(const Recording& recording);

} // namespace qn

#pragma once

#include "core/recording.h"
#include "core/settings.h"

namespace qn {

// The row of a recording that starts now: a fresh id, its ".part" path in the recordings folder,
// and a title made of the local time when `title` is empty.
Recording newRecording(const Settings& settings, const QString& title, const QDateTime& now);

} // namespace qn

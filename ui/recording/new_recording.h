#pragma once

#include "core/recording.h"
#include "core/settings.h"

namespace qn {

// The row of a recording that starts now: a new id, a ".part" path in the recordings folder, and,
// if `title` is empty, a title made of the local time.
Recording newRecording(const Settings& settings, const QString& title, const QDateTime& now);

} // namespace qn

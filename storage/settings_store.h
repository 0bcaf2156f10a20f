#pragma once

#include "core/settings.h"

namespace qn {

// The preferences kept in the user's settings store; unreadable values become their defaults.
// Main thread only.
Settings loadSettings();

// Writes all six preferences to disk at once.
void saveSettings(const Settings& settings);

} // namespace qn

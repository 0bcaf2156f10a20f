#pragma once

#include <QString>

namespace qn {

// Whether a process belongs to the application: it bears its bundle identifier or, as helper
// processes do, an extension of it behind a dot.
bool belongsToApplication(const QString& processBundleId, const QString& applicationId);

} // namespace qn

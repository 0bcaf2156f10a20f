#pragma once

#include <QString>

namespace qn {

// Whether a process belongs to the application: it has its bundle identifier or, as helper
// processes do, that with a dot and more behind it.
bool belongsToApplication(const QString& processBundleId, const QString& applicationId);

} // namespace qn

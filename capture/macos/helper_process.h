#pragma once

#include <QString>

namespace qn {

// Whether the process has the application's bundle identifier, or one that extends it after a dot,
// as helper processes do.
bool belongsToApplication(const QString& processBundleId, const QString& applicationId);

} // namespace qn

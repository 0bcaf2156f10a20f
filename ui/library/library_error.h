#pragma once

#include <QString>

namespace qn {

// A database driver's error text in plain Russian, worded to end a sentence about the library.
QString plainReason(const QString& driverText);

} // namespace qn

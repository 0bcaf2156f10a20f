#pragma once

#include <QString>

namespace qn {

// What a database driver's words mean to the user, as the end of a sentence about the library.
QString plainReason(const QString& driverText);

} // namespace qn

#pragma once

#include <QString>

namespace qn {

// The program's version. It stands only here; the build reads it from this file.
inline QString version() {
    return QStringLiteral("0.1.5");
}

} // namespace qn

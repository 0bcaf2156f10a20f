#pragma once

#include <QString>

namespace qn {

// The one place that names it: the build reads it from here.
inline QString version() {
    return QStringLiteral("0.1.5");
}

} // namespace qn

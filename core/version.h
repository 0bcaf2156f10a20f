#pragma once

#include <QString>

namespace qn {

inline constexpr char16_t kVersion[] = u"0.1.5";

inline QString version() {
    return QString::fromUtf16(kVersion);
}

} // namespace qn

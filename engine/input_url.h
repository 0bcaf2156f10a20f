#pragma once

#include <QString>

namespace qn {

// A local path as ffmpeg's input. A relative one gets the prefix "file:", because ffmpeg takes
// "name:" at its start for a protocol and "-" for standard input.
inline QString inputUrl(const QString& path) {
    return path.startsWith(u'/') ? path : QStringLiteral("file:") + path;
}

} // namespace qn

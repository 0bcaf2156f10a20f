#pragma once

#include <QString>

namespace qn {

// A local file as ffmpeg's input: an absolute path unchanged. In any other name ffmpeg would take
// "name:" for a protocol and "-" for its standard input, so the file protocol is spelled out.
inline QString inputUrl(const QString& path) {
    return path.startsWith(u'/') ? path : QStringLiteral("file:") + path;
}

} // namespace qn

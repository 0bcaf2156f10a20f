#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace qn {

struct DecodedPeaks {
    QList<float> peaks; // 0.0 to 1.0, in time order, evenly spaced over the file
    bool ok = false;
    QString errorText; // the tool's own words
};

// Decodes the first audio stream of a file with ffmpeg. Blocks the calling thread, a QThread, until
// the file's end; nothing comes back when that thread's interruption is requested meanwhile.
std::optional<DecodedPeaks> decodePeaks(const QString& path);

} // namespace qn

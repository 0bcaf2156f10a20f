#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace qn {

struct DecodedPeaks {
    QList<float> peaks; // 0.0 to 1.0, in time order, evenly spaced over the file
    bool ok = false;
    QString errorText; // the tool's last error output, or why it did not start
};

// Decodes the first audio stream of a file with ffmpeg. Blocks the calling QThread until the end of
// the file; returns nothing if that thread's interruption is requested.
std::optional<DecodedPeaks> decodePeaks(const QString& path);

} // namespace qn

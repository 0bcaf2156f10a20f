#pragma once

#include <QList>
#include <QString>

namespace qn {

// The mixer ignores blocks outside these limits.
inline constexpr qint32 kMaxChannels = 32;
inline constexpr qint32 kLowestRate = 8000; // frames per second

// One block of captured audio, as a producer delivers it to the mixer.
struct AudioBlock {
    QList<float> samples;      // interleaved, `channels` values per frame, full scale +-1.0
    qint32 sampleRate = 48000; // frames per second
    qint32 channels = 1;
    qint64 timestampNs = 0;  // steady-clock time of the first frame
    quint64 channelMask = 0; // speaker positions in channel order, WAVE bits; 0 = unknown layout
    QString sourceKey;       // the producer; the mixer keeps conversion state per key
};

// The steady clock's present time, as in `timestampNs`.
qint64 steadyNowNs();

// How long that many frames last, rounded towards zero. The rate must not be 0.
qint64 durationNs(qint64 frames, qint32 sampleRate);

} // namespace qn

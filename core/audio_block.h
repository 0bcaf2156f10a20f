#pragma once

#include <QList>
#include <QMetaType>
#include <QString>

namespace qn {

// One block of captured audio, as a producer delivers it to the mixer.
struct AudioBlock {
    QList<float> samples;      // interleaved, `channels` values per frame, full scale +-1.0
    qint32 sampleRate = 48000; // frames per second
    qint32 channels = 1;
    qint64 timestampNs = 0;  // steady-clock time of the first frame
    quint64 channelMask = 0; // speaker positions in channel order, WAVE bits; 0 = unknown layout
    QString sourceKey;       // the producer; the mixer keeps conversion state per key
};

} // namespace qn

Q_DECLARE_METATYPE(qn::AudioBlock)

#pragma once

#include "core/audio_format.h"

#include <QByteArray>
#include <QString>

namespace qn {

// The user's recording preferences.
struct Settings {
    qint32 sourceKind = 0; // far side: 0 system output, 1 chosen output device, 2 one application
    QString sourceId;      // chosen device or application; ignored for kind 0
    bool microphoneEnabled = true;
    QByteArray microphoneId; // empty: the default input device
    AudioFormat format = AudioFormat::Opus;
    QString directory; // where recordings are written
};

} // namespace qn

#include "core/audio_format.h"

namespace qn {

using namespace Qt::StringLiterals;

QString toText(AudioFormat format) {
    switch (format) {
    case AudioFormat::Wav:
        return u"wav"_s;
    case AudioFormat::Mp3:
        return u"mp3"_s;
    case AudioFormat::Opus:
        break;
    }
    return u"opus"_s;
}

AudioFormat audioFormatFromText(const QString& text) {
    if (text == "wav"_L1)
        return AudioFormat::Wav;
    if (text == "mp3"_L1)
        return AudioFormat::Mp3;
    return AudioFormat::Opus;
}

} // namespace qn

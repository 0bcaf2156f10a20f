#include "engine/codec_arguments.h"

namespace qn {

using namespace Qt::StringLiterals;

QStringList codecArguments(AudioFormat format) {
    switch (format) {
    case AudioFormat::Mp3:
        return {u"-c:a"_s, u"libmp3lame"_s, u"-b:a"_s, u"128k"_s, u"-f"_s, u"mp3"_s};
    case AudioFormat::Wav:
        return {u"-c:a"_s, u"pcm_s16le"_s, u"-rf64"_s, u"auto"_s, u"-f"_s, u"wav"_s};
    case AudioFormat::Opus:
        break;
    }
    return {u"-c:a"_s, u"libopus"_s, u"-b:a"_s,           u"64k"_s,
            u"-vbr"_s, u"on"_s,      u"-application"_s,   u"voip"_s,
            u"-f"_s,   u"opus"_s,    u"-page_duration"_s, u"200000"_s};
}

} // namespace qn

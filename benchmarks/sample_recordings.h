#pragma once

#include "core/audio_format.h"
#include "engine/codec_arguments.h"
#include "engine/tools.h"

#include <QFile>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <cstdio>
#include <cstdlib>

// Long recordings for the benchmarks: a minute of noise that swells and fades, repeated.
namespace sample_recordings {

using namespace Qt::StringLiterals;

inline void ffmpeg(const QStringList& arguments) {
    const QStringList common{u"-hide_banner"_s, u"-loglevel"_s, u"error"_s, u"-nostdin"_s, u"-y"_s};
    if (QProcess::execute(qn::ffmpegPath(), common + arguments) == 0)
        return;
    std::fputs("ffmpeg failed\n", stderr);
    std::exit(1);
}

inline QString path(const QString& folder, qn::AudioFormat format) {
    return folder + u"/long."_s + qn::toText(format);
}

inline void make(const QString& folder, int minutes) {
    const QString minute = folder + u"/minute.wav"_s;
    ffmpeg(
        {u"-f"_s, u"lavfi"_s, u"-i"_s,
         u"anoisesrc=c=pink:a=0.4:r=48000:d=60,lowpass=3000,volume=0.5+0.5*sin(2*PI*t/3):eval=frame"_s,
         u"-ac"_s, u"1"_s, u"-c:a"_s, u"pcm_s16le"_s, minute});
    const QString wav = path(folder, qn::AudioFormat::Wav);
    ffmpeg({u"-stream_loop"_s, QString::number(minutes - 1), u"-i"_s, minute, u"-c"_s, u"copy"_s,
            u"-rf64"_s, u"auto"_s, wav});
    for (const qn::AudioFormat format : {qn::AudioFormat::Opus, qn::AudioFormat::Mp3})
        ffmpeg(QStringList{u"-i"_s, wav} + qn::codecArguments(format) << path(folder, format));
}

} // namespace sample_recordings

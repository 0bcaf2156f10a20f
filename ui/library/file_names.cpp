#include "ui/library/file_names.h"

#include "core/date_time.h"
#include "core/text.h"

namespace qn {

using namespace Qt::StringLiterals;

namespace {

// File systems allow 255 bytes, and the temporary name that is written first is 7 bytes longer.
constexpr qsizetype kMostNameBytes = 248;

// Only a known format may become part of a file name; a row can hold any text.
QString extensionOf(const Recording& recording) {
    return toText(audioFormatFromText(recording.format));
}

} // namespace

QString exportFilters() {
    return u"Opus (*.opus);;MP3 (*.mp3);;WAV (*.wav)"_s;
}

QString exportFilter(AudioFormat format) {
    const int index = static_cast<int>(format);
    return exportFilters().split(u";;"_s).value(index);
}

AudioFormat formatOfFilter(const QString& filter) {
    if (filter.startsWith(u"MP3"_s))
        return AudioFormat::Mp3;
    if (filter.startsWith(u"WAV"_s))
        return AudioFormat::Wav;
    return AudioFormat::Opus;
}

QString exportFileName(const Recording& recording) {
    const QDateTime started = recording.started.toTimeZone(recordingZone(recording.timezone));
    const QString end =
        u'_' + started.toString(u"yyyy-MM-dd_HH-mm"_s) + u'.' + extensionOf(recording);
    QString title = safeFileName(recording.title);
    while (title.toUtf8().size() + end.size() > kMostNameBytes)
        title.chop(title.back().isLowSurrogate() ? 2 : 1);
    return title + end;
}

QString withExtension(const QString& path, AudioFormat format) {
    const QString extension = u'.' + toText(format);
    return path.endsWith(extension, Qt::CaseInsensitive) ? path : path + extension;
}

QString recoveryPath(const Recording& recording) {
    const QString suffix = u".part"_s;
    if (recording.path.endsWith(suffix))
        return recording.path.chopped(suffix.size());
    return recording.path + u".recovered."_s + extensionOf(recording);
}

} // namespace qn

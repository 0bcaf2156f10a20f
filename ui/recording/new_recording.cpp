#include "ui/recording/new_recording.h"

#include "core/version.h"

#include <QDir>
#include <QTimeZone>
#include <QUuid>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kIdInFileName = 8; // characters

QString partPath(const Settings& settings, const Recording& recording) {
    const QString name = recording.started.toLocalTime().toString(u"yyyy-MM-dd_HH-mm-ss"_s) + u'_' +
                         recording.id.left(kIdInFileName) + u'.' + recording.format + u".part"_s;
    return QDir(settings.directory).absoluteFilePath(name);
}

} // namespace

Recording newRecording(const Settings& settings, const QString& title, const QDateTime& now) {
    Recording recording;
    recording.id = QUuid::createUuid().toString(QUuid::WithoutBraces);
    recording.started = now.toUTC();
    recording.timezone = QString::fromUtf8(QTimeZone::systemTimeZoneId());
    recording.title = title.isEmpty()
                          ? u"Quorlin — "_s + now.toLocalTime().toString(u"dd.MM.yyyy HH:mm"_s)
                          : title;
    recording.format = toText(settings.format);
    recording.status = u"starting"_s;
    recording.path = partPath(settings, recording);
    recording.details = {{u"source_kind"_s, settings.sourceKind},
                         {u"source_id"_s, settings.sourceId},
                         {u"microphone"_s, settings.microphoneEnabled},
                         {u"application_version"_s, version()}};
    return recording;
}

} // namespace qn

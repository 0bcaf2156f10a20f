#include "storage/settings_store.h"

#include <QDir>
#include <QSettings>
#include <QStandardPaths>
#include <QVariant>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

const QString kSourceKind = u"source/kind"_s;
const QString kSourceId = u"source/id"_s;
const QString kMicrophoneEnabled = u"microphone/enabled"_s;
const QString kMicrophoneId = u"microphone/id"_s;
const QString kFormat = u"audio/format"_s;
const QString kDirectory = u"audio/directory"_s;

QString defaultDirectory() {
    const QDir music(QStandardPaths::writableLocation(QStandardPaths::MusicLocation));
    return music.filePath(u"Quorlin"_s);
}

} // namespace

Settings loadSettings() {
    const QSettings store;
    Settings settings;
    const int kind = store.value(kSourceKind, 0).toInt();
    settings.sourceKind = kind >= 0 && kind <= 2 ? kind : 0;
    settings.sourceId = store.value(kSourceId).toString();
    settings.microphoneEnabled = store.value(kMicrophoneEnabled, true).toBool();
    settings.microphoneId = store.value(kMicrophoneId).toByteArray();
    settings.format = audioFormatFromText(store.value(kFormat, u"opus"_s).toString());
    settings.directory = store.value(kDirectory, defaultDirectory()).toString();
    return settings;
}

void saveSettings(const Settings& settings) {
    QSettings store;
    store.setValue(kSourceKind, settings.sourceKind);
    store.setValue(kSourceId, settings.sourceId);
    store.setValue(kMicrophoneEnabled, settings.microphoneEnabled);
    store.setValue(kMicrophoneId, settings.microphoneId);
    store.setValue(kFormat, toText(settings.format));
    store.setValue(kDirectory, settings.directory);
    store.sync();
}

} // namespace qn

#include "capture/capture_backend.h"
#include "capture/microphone.h"
#include "engine/recorder_worker.h"

#include <algorithm>
#include <utility>

namespace qn {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto kLongestMicrophoneSilence = 2s; // without blocks; blocks of silence are fine

QString displayName(const QList<SourceEntry>& entries, const QString& id) {
    const auto last = std::find_if(entries.rbegin(), entries.rend(),
                                   [&](const SourceEntry& entry) { return entry.id == id; });
    return last == entries.rend() ? id : last->name;
}

} // namespace

void RecorderWorker::openBackends() {
    backend = makeCaptureBackend();
    connect(backend.get(), &CaptureBackend::block, this, [this](const AudioBlock& block) {
        if (state == State::Recording)
            push(TimelineMixer::kFarSide, block);
    });
    // A failed source never ends the recording: the next refresh opens one again.
    connect(backend.get(), &CaptureBackend::failed, this, [this](const QString& message) {
        activeSource.clear();
        warning(message);
    });
    microphone = makeMicrophoneBackend();
    connect(microphone.get(), &MicrophoneBackend::block, this,
            &RecorderWorker::microphoneDelivered);
    connect(microphone.get(), &MicrophoneBackend::failed, this, &RecorderWorker::microphoneLost);
}

void RecorderWorker::refreshSources() {
    if (!backend || state != State::Recording)
        return;
    refreshFarSide();
    refreshMicrophone();
}

void RecorderWorker::refreshFarSide() {
    const Catalog catalog = backend->catalog();
    const Selection selection = selectionOf(settings);
    const QString resolved = resolveSource(selection, catalog);
    if (!resolved.isEmpty() && resolved == activeSource)
        return;
    const QString previous = std::exchange(activeSource, {});
    backend->stop();
    if (resolved.isEmpty()) {
        warning(selection.kind == SourceKind::Application
                    ? u"Ожидаем аудиопоток выбранного приложения"_s
                    : u"Нет устройства вывода — ожидаем подключения"_s);
        return;
    }
    QString error;
    if (!backend->start(selection, resolved, error)) {
        warning(error);
        return;
    }
    activeSource = resolved;
    lastWarning.clear();
    announceFarSide(previous, selection, catalog);
}

void RecorderWorker::announceFarSide(const QString& previous, const Selection& selection,
                                     const Catalog& catalog) {
    const bool fallback = selection.kind == SourceKind::Device && activeSource != selection.id;
    const bool application = selection.kind == SourceKind::Application;
    const QString name =
        displayName(application ? catalog.applications : catalog.outputs, activeSource);
    Q_EMIT sourceChanged((fallback ? u"Системное устройство: "_s : u"Источник: "_s) + name,
                         {{u"from"_s, previous},
                          {u"to"_s, activeSource},
                          {u"preferred"_s, selection.id},
                          {u"fallback"_s, fallback}});
}

void RecorderWorker::refreshMicrophone() {
    if (!settings.microphoneEnabled)
        return;
    const MicrophoneList list = microphone->list();
    const MicrophoneEntry* wanted = resolveMicrophone(settings.microphoneId, list);
    if (!microphoneId.isEmpty() &&
        Clock::now() - lastBlock[TimelineMixer::kMicrophone] >= kLongestMicrophoneSilence) {
        microphoneLost();
        closeMicrophone();
        microphoneUnheard = true;
    }
    if (microphoneId.isEmpty() || !wanted || wanted->id != microphoneId)
        startMicrophone(wanted);
}

void RecorderWorker::startMicrophone(const MicrophoneEntry* wanted) {
    closeMicrophone();
    if (state != State::Recording) // the last block failed and ended the session
        return;
    if (!wanted) {
        warning(u"Микрофон недоступен — ожидаем подключения"_s);
        return;
    }
    QString error;
    if (!microphone->start(wanted->id, error)) {
        warning(u"Не удалось открыть микрофон"_s);
        return;
    }
    lastBlock[TimelineMixer::kMicrophone] = Clock::now();
    microphoneId = wanted->id;
    // One that is reopened because it delivered nothing is announced only once it delivers.
    microphoneUnheard = microphoneUnheard && microphoneName == wanted->name;
    microphoneName = wanted->name;
    if (!microphoneUnheard)
        announceMicrophone();
}

void RecorderWorker::announceMicrophone() {
    const bool fallback = !settings.microphoneId.isEmpty() && settings.microphoneId != microphoneId;
    Q_EMIT sourceChanged(u"Микрофон: "_s + microphoneName,
                         {{u"microphone"_s, microphoneName},
                          {u"id"_s, QString::fromUtf8(microphoneId)},
                          {u"fallback"_s, fallback}});
}

// Takes the samples it still holds before it closes.
void RecorderWorker::closeMicrophone() {
    if (microphone)
        microphone->stop();
    microphoneId.clear();
}

void RecorderWorker::microphoneDelivered(const AudioBlock& block) {
    if (state != State::Recording)
        return;
    if (std::exchange(microphoneUnheard, false))
        announceMicrophone();
    push(TimelineMixer::kMicrophone, block);
}

void RecorderWorker::microphoneLost() {
    if (state != State::Recording)
        return;
    warning(u"Микрофон отключился — выбираем доступный микрофон"_s);
    microphoneId.clear();
}

void RecorderWorker::warning(const QString& text) {
    if (text == lastWarning)
        return;
    lastWarning = text;
    Q_EMIT sourceChanged(text, {{u"warning"_s, text}});
}

} // namespace qn

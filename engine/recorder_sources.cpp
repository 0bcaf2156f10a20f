#include "capture/capture_backend.h"
#include "engine/microphone_samples.h"
#include "engine/paced_microphone.h"
#include "engine/recorder_worker.h"

#include <QAudioSource>
#include <QIODevice>
#include <QMediaDevices>

#include <algorithm>
#include <utility>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 kMicrophoneBufferUs = 100'000;
constexpr qsizetype kLeastMicrophoneBuffer = 4096; // bytes

QString displayName(const QList<SourceEntry>& entries, const QString& id) {
    const auto last = std::find_if(entries.rbegin(), entries.rend(),
                                   [&](const SourceEntry& entry) { return entry.id == id; });
    return last == entries.rend() ? id : last->name;
}

} // namespace

void RecorderWorker::openBackend() {
    backend = makeCaptureBackend();
    connect(backend.get(), &CaptureBackend::block, this, [this](const AudioBlock& block) {
        if (state == State::Recording)
            push(TimelineMixer::kFarSide, block);
    });
    // A breakdown never ends the recording: the next refresh opens a source again.
    connect(backend.get(), &CaptureBackend::failed, this, [this](const QString& message) {
        activeSource.clear();
        warning(message);
    });
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
    if (!microphone || chosenMicrophone().id() != microphoneId)
        startMicrophone();
}

// The chosen device while it is connected, the default one otherwise; null when there is none.
QAudioDevice RecorderWorker::chosenMicrophone() const {
    QAudioDevice device = QMediaDevices::defaultAudioInput();
    if (settings.microphoneId.isEmpty())
        return device;
    const QList<QAudioDevice> inputs = QMediaDevices::audioInputs();
    for (const QAudioDevice& input : inputs) {
        if (input.id() == settings.microphoneId)
            device = input;
    }
    return device;
}

void RecorderWorker::startMicrophone() {
    readMicrophone();
    if (state != State::Recording)
        return;
    closeMicrophone();
    const QAudioDevice device = chosenMicrophone();
    if (device.isNull()) {
        warning(u"Микрофон недоступен — ожидаем подключения"_s);
        return;
    }
    microphoneFormat = device.preferredFormat();
    microphone = std::make_unique<QAudioSource>(device, microphoneFormat);
    microphone->setBufferSize(std::max<qsizetype>(
        microphoneFormat.bytesForDuration(kMicrophoneBufferUs), kLeastMicrophoneBuffer));
    connect(microphone.get(), &QAudioSource::stateChanged, this, [this](QAudio::State newState) {
        if (newState != QAudio::StoppedState || microphone->error() == QAudio::NoError ||
            state != State::Recording)
            return;
        warning(u"Микрофон отключился — выбираем доступный микрофон"_s);
        microphoneId.clear();
    });
    microphoneDevice = microphone->start();
    if (!microphoneDevice) {
        closeMicrophone();
        warning(u"Не удалось открыть микрофон"_s);
        return;
    }
    microphoneId = device.id();
#ifdef Q_OS_LINUX // elsewhere readyRead comes with the data
    microphoneDevice = new PacedMicrophone(*microphoneDevice, microphoneFormat); // its child
#endif
    connect(microphoneDevice, &QIODevice::readyRead, this, &RecorderWorker::readMicrophone);
    announceMicrophone(device);
}

void RecorderWorker::announceMicrophone(const QAudioDevice& device) {
    const bool fallback = !settings.microphoneId.isEmpty() && settings.microphoneId != microphoneId;
    Q_EMIT sourceChanged(u"Микрофон: "_s + device.description(),
                         {{u"microphone"_s, device.description()},
                          {u"id"_s, QString::fromUtf8(microphoneId)},
                          {u"fallback"_s, fallback}});
}

void RecorderWorker::closeMicrophone() {
    if (microphone) {
        microphone->disconnect(this);
        microphone->stop();
        microphone.release()->deleteLater(); // this may be inside a signal of its own
    }
    microphoneDevice.clear();
    microphoneId.clear();
    microphoneBuffer.clear();
}

void RecorderWorker::readMicrophone() {
    if (!microphoneDevice || state != State::Recording)
        return;
    microphoneBuffer += microphoneDevice->readAll();
    const AudioBlock block = takeMicrophoneBlock(microphoneBuffer, microphoneFormat, steadyNowNs());
    if (!block.samples.isEmpty())
        push(TimelineMixer::kMicrophone, block);
}

void RecorderWorker::warning(const QString& text) {
    if (text == lastWarning)
        return;
    lastWarning = text;
    Q_EMIT sourceChanged(text, {{u"warning"_s, text}});
}

} // namespace qn

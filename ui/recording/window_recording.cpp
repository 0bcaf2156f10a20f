#include "core/text.h"
#include "engine/recorder_worker.h"
#include "engine/tools.h"
#include "ui/common/shortcuts.h"
#include "ui/library/library_writer.h"
#include "ui/library/recording_table.h"
#include "ui/playback/playback_panel.h"
#include "ui/recording/free_space.h"
#include "ui/recording/microphone_permission.h"
#include "ui/recording/new_recording.h"
#include "ui/recording/recording_icon.h"
#include "ui/recording/recording_panel.h"
#include "ui/settings/settings_dialog.h"
#include "ui/window.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <QStatusBar>
#include <QTemporaryFile>

#include <utility>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

constexpr int kSavedShownMs = 10000;

} // namespace

void Window::connectWorker() {
    worker = new RecorderWorker;
    worker->moveToThread(&workerThread);
    connect(&workerThread, &QThread::finished, worker, &QObject::deleteLater);
    connect(worker, &RecorderWorker::stateChanged, this, &Window::stateChanged);
    connect(worker, &RecorderWorker::began, this, &Window::recordingBegan);
    connect(worker, &RecorderWorker::progress, this, &Window::recordingProgress);
    connect(worker, &RecorderWorker::sourceChanged, this, &Window::sourceChanged);
    connect(worker, &RecorderWorker::completed, this, &Window::recordingFinished);
    connect(worker, &RecorderWorker::levels, recordingPanel, &RecordingPanel::setLevels);
    connect(recordingPanel, &RecordingPanel::silenceChanged, this,
            [this](const QString& advice) { statusBar()->showMessage(advice); });
    workerThread.start();
}

void Window::invokeWorker(void (RecorderWorker::*slot)()) {
    QMetaObject::invokeMethod(worker, slot, Qt::QueuedConnection);
}

void Window::togglePause() {
    invokeWorker(state == State::Paused ? &RecorderWorker::resume : &RecorderWorker::pause);
}

void Window::stopRecording() {
    invokeWorker(&RecorderWorker::stop);
}

void Window::startRecording() {
    if (!isResting(state))
        return;
    savePreferences();
    if (settings.sourceKind != 0 && settings.sourceId.isEmpty()) {
        showError(u"Выберите устройство или приложение в настройках"_s);
        return;
    }
    if (settings.microphoneEnabled && !askForMicrophone())
        return;
    if (!QDir().mkpath(settings.directory)) {
        showError(u"Не удалось создать папку записей"_s);
        return;
    }
    QTemporaryFile probe(QDir(settings.directory).filePath(u".quorlin-check-XXXXXX"_s));
    if (!probe.open()) {
        showError(u"Папка записей недоступна для записи"_s);
        return;
    }
    player.stop();
    const Recording recording =
        newRecording(settings, recordingPanel->title(), QDateTime::currentDateTimeUtc());
    if (!tryLibrary([&] { library->insert(recording); }))
        return;
    current = recording;
    statusBar()->clearMessage(); // of earlier recordings
    recordingPanel->setElapsed(0);
    farSide = {};
    stateChanged(State::Starting);
    refreshLibrary();
    table->scrollToTop(); // where the new row is
    QMetaObject::invokeMethod(
        worker,
        [target = worker, copy = settings, path = current.path] { target->begin(copy, path); },
        Qt::QueuedConnection);
}

// True if the microphone may be used now. If the user has to be asked first, the answer starts the
// recording.
bool Window::askForMicrophone() {
    recordingPanel->setRecordEnabled(false); // before the answer, which may come at once
    const auto permission =
        requestMicrophone(this, [this](bool granted) { microphoneAnswered(granted); });
    if (permission == MicrophonePermission::Undetermined)
        return false;
    recordingPanel->setRecordEnabled(true);
    if (permission == MicrophonePermission::Denied)
        showError(u"Доступ к микрофону запрещён. Разрешите его в настройках системы либо отключите "
                  "микрофон."_s);
    return permission == MicrophonePermission::Granted;
}

void Window::microphoneAnswered(bool granted) {
    recordingPanel->setRecordEnabled(true);
    if (granted)
        startRecording();
    else
        showError(u"Разрешите доступ к микрофону в настройках системы либо отключите микрофон в "
                  "настройках записи."_s);
}

void Window::stateChanged(State newState) {
    const State oldState = std::exchange(state, newState);
    recordingPanel->showState(newState);
    setWindowIcon(recordingIcon(newState == State::Recording));
    settingsDialog->setEditable(isResting(newState));
    playbackPanel->playButton->setToolTip(isResting(newState)
                                              ? keyText(Qt::Key_Space)
                                              : u"Во время записи воспроизведение недоступно"_s);
    if (isResting(newState))
        freeSpace->clear();
    if (newState == State::Paused) {
        current.status = u"paused"_s;
        writer->addEvent(current.id, u"pause"_s, {});
        writer->update(current);
    } else if (newState == State::Recording) {
        current.status = u"recording"_s;
        if (oldState == State::Paused)
            writer->addEvent(current.id, u"resume"_s, {});
        writer->update(current);
    }
    if (newState == State::Paused || oldState == State::Paused)
        refreshLibrary(); // it calls selectionChanged too
    else
        selectionChanged();
}

void Window::recordingBegan(const QDateTime& startedUtc) {
    current.started = startedUtc;
    current.status = u"recording"_s;
    writer->update(current);
    refreshLibrary();
}

void Window::recordingProgress(qint64 durationMs) {
    recordingPanel->setElapsed(durationMs);
    current.durationMs = durationMs;
    current.ended = QDateTime::currentDateTimeUtc();
    writer->update(current);
    freeSpace->setText(freeSpaceText(settings.directory, settings.format));
}

void Window::sourceChanged(const QString& description, const QJsonObject& sourceDetails) {
    const bool isMicrophone = sourceDetails.contains("microphone"_L1);
    const bool isWarning = sourceDetails.contains("warning"_L1);
    if (isMicrophone)
        recordingPanel->setMicrophoneCaption(description);
    else
        recordingPanel->setSystemCaption(description, isWarning);
    // Only its words tell whether a warning is about the microphone; the far side's place shows it
    // until the microphone is back.
    if (!isMicrophone && !description.contains(u"икрофон"_s))
        farSide = {description, isWarning};
    else if (isMicrophone && !farSide.caption.isEmpty())
        recordingPanel->setSystemCaption(farSide.caption, farSide.isWarning);
    writer->addEvent(current.id, u"source"_s, sourceDetails);
}

void Window::showFailure(const QString& error, const QString& path, bool hadBegun) {
    QString advice;
    if (QFileInfo::exists(path))
        advice = u"Записанное до ошибки сохранено. Выделите запись и нажмите «Восстановить»."_s;
    else if (const QString tool = ffmpegPath(); !hadBegun && !tool.isEmpty())
        advice = u"Программа ffmpeg не запускается: %1"_s.arg(tool);
    QApplication::alert(this); // the box may be hidden behind other windows
    showError(error, {.informative = advice, .detailed = {}});
}

void Window::recordingFinished(const QString& path, qint64 durationMs, const QString& error) {
    const bool hadBegun = current.status != "starting"_L1;
    current.path = path;
    current.durationMs = durationMs;
    current.ended = QDateTime::currentDateTimeUtc();
    current.status = error.isEmpty() ? u"ready"_s : u"failed"_s;
    if (!error.isEmpty()) {
        current.details.insert(u"error"_s, error);
        writer->addEvent(current.id, u"error"_s, {{u"message"_s, error}});
    }
    writer->update(std::exchange(current, {}));
    writer->flush();
    recordingPanel->setElapsed(durationMs);
    recordingPanel->setLevels(0, 0);
    refreshLibrary();
    if (error.isEmpty())
        statusBar()->showMessage(u"Сохранено: %1 (%2)"_s.arg(path, formatDuration(durationMs)),
                                 kSavedShownMs);
    else
        showFailure(error, path, hadBegun);
    if (closePending)
        requestClose();
}

} // namespace qn

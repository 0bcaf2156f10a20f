#include "engine/recorder_worker.h"

#include "capture/capture_backend.h"
#include "capture/microphone.h"
#include "engine/encoder.h"
#include "engine/timeline_rate.h"

#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <exception>
#include <ratio>

namespace qn {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto kTick = 20ms;
constexpr auto kWatchInterval = 1s;
constexpr auto kLevelHolds = 500ms;
constexpr std::chrono::nanoseconds kLatency = 250ms; // time for both inputs to deliver
using Samples = std::chrono::duration<qint64, std::ratio<1, kTimelineRate>>;
constexpr qint64 kSamplesPerMs = kTimelineRate / 1000;
constexpr qint64 kLargestLag = qint64{4} * kTimelineRate;
constexpr qint64 kLargestChunk = kTimelineRate / 10;
constexpr qint64 kLeastFreeBytes = qint64{1024} * 1024;
constexpr qsizetype kPartSuffixLength = 5; // ".part"

} // namespace

RecorderWorker::RecorderWorker() : timer(new QTimer(this)) {
    timer->setTimerType(Qt::PreciseTimer);
    timer->setInterval(kTick);
    connect(timer, &QTimer::timeout, this, &RecorderWorker::tick);
}

RecorderWorker::~RecorderWorker() {
    timer->stop();
    stopDevices();
    if (encoder)
        encoder->abort();
}

void RecorderWorker::begin(const Settings& newSettings, const QString& newPartPath) {
    Q_ASSERT(QThread::currentThread() == thread());
    if (!isResting(state))
        return;
    settings = newSettings;
    partPath = newPartPath;
    accumulatedSamples = 0;
    finishing = false;
    lastWarning.clear();
    pendingError.clear();
    setState(State::Starting);

    encoder = std::make_unique<Encoder>();
    connect(encoder.get(), &Encoder::failed, this, &RecorderWorker::finish);
    const QDateTime started = QDateTime::currentDateTimeUtc();
    QString error;
    if (!encoder->start(partPath, settings.format, started, error)) {
        finish(error);
        return;
    }
    openBackends();
    restartTimeline();
    lastProgress = lastRefresh = sessionStart;
    setState(State::Recording);
    Q_EMIT began(started);
    openSources();
    timer->start();
}

void RecorderWorker::pause() {
    Q_ASSERT(QThread::currentThread() == thread());
    if (state != State::Recording)
        return;
    drain();
    if (state != State::Recording)
        return;
    accumulatedSamples += mixer.samplesRead();
    setState(State::Paused);
    stopDevices();
    Q_EMIT progress(accumulatedSamples / kSamplesPerMs);
    Q_EMIT levels(0, 0);
}

void RecorderWorker::resume() {
    Q_ASSERT(QThread::currentThread() == thread());
    if (state != State::Paused)
        return;
    restartTimeline();
    setState(State::Recording);
    openSources();
}

void RecorderWorker::stop() {
    Q_ASSERT(QThread::currentThread() == thread());
    if (state == State::Recording || state == State::Paused)
        finish({});
}

void RecorderWorker::setState(State next) {
    state = next;
    Q_EMIT stateChanged(next);
}

void RecorderWorker::restartTimeline() {
    sessionStart = Clock::now();
    const std::chrono::nanoseconds origin = sessionStart.time_since_epoch();
    mixer.reset(origin.count());
}

// A platform that asks the user for permission blocks the first capture until the answer. The
// recording then starts at the answer.
void RecorderWorker::openSources() {
    refreshSources();
    if (Clock::now() - sessionStart > std::chrono::seconds(kLargestLag / kTimelineRate))
        restartTimeline();
}

// While paused, accumulatedSamples already includes what the mixer has counted.
qint64 RecorderWorker::samplesWritten() const {
    return accumulatedSamples + (state == State::Recording ? mixer.samplesRead() : 0);
}

void RecorderWorker::tick() {
    if (state != State::Recording)
        return;
    render(false);
    if (state != State::Recording)
        return;
    Q_EMIT levels(currentLevel(TimelineMixer::kMicrophone), currentLevel(TimelineMixer::kFarSide));
    watch(Clock::now());
}

// The mixer's level falls only while blocks arrive, so a side that delivers none gets 0.
float RecorderWorker::currentLevel(int input) const {
    return Clock::now() - lastBlock[input] < kLevelHolds ? mixer.level(input) : 0;
}

void RecorderWorker::watch(Clock::time_point now) {
    if (now - lastProgress >= kWatchInterval) {
        lastProgress = now;
        Q_EMIT progress(samplesWritten() / kSamplesPerMs);
        if (diskIsFull()) {
            finish(u"На диске закончилось свободное место"_s);
            return;
        }
    }
    if (now - lastRefresh >= kWatchInterval) {
        lastRefresh = now;
        refreshSources();
    }
}

bool RecorderWorker::diskIsFull() const {
    const QStorageInfo volume(QFileInfo(partPath).absolutePath());
    const qint64 available = volume.bytesAvailable();
    // -1 when the volume does not report its free space.
    return volume.isValid() && available >= 0 && available < kLeastFreeBytes;
}

void RecorderWorker::render(bool flush) {
    const auto latency = flush ? std::chrono::nanoseconds::zero() : kLatency;
    const auto elapsed = std::chrono::duration_cast<Samples>(Clock::now() - latency - sessionStart);
    const qint64 target = std::max<qint64>(0, elapsed.count());
    if (target - mixer.samplesRead() > kLargestLag) {
        finish(u"Обработка звука отстала более чем на 4 секунды"_s);
        return;
    }
    while (mixer.samplesRead() < target) {
        const qint64 count = std::min(target - mixer.samplesRead(), kLargestChunk);
        // So that ffmpeg is woken ten times a second, not at every tick.
        if (!flush && count < kLargestChunk)
            return;
        QString error;
        if (!encoder->write(mixer.read(static_cast<int>(count)), error)) {
            finish(error);
            return;
        }
    }
}

void RecorderWorker::push(int input, const AudioBlock& block) {
    lastBlock[input] = Clock::now();
    try {
        mixer.push(input, block);
    } catch (const std::exception& exception) {
        finish(QString::fromUtf8(exception.what()));
    }
}

// Ends the session. An error raised meanwhile, for instance by the last render, is kept in
// pendingError and counts only if there was none before.
void RecorderWorker::finish(const QString& error) {
    if (finishing) {
        if (!error.isEmpty())
            pendingError = error;
        return;
    }
    if (isResting(state))
        return;
    finishing = true;
    timer->stop();
    QString message = error;
    if (state == State::Recording && message.isEmpty())
        drain();
    if (message.isEmpty())
        message = pendingError;
    const qint64 samples = samplesWritten();
    setState(State::Finalizing);
    stopDevices();
    QString encoderError;
    if (encoder && !encoder->finish(encoderError) && message.isEmpty())
        message = encoderError.isEmpty() ? u"Не удалось завершить файл"_s : encoderError;
    // Deleted later, because this may run inside one of the encoder's signals.
    if (encoder)
        encoder.release()->deleteLater();
    backend.reset();
    const QString finalPath = message.isEmpty() ? keepFile() : QString();
    if (message.isEmpty() && finalPath.isEmpty())
        message = u"Не удалось завершить сохранение файла"_s;
    setState(message.isEmpty() ? State::Idle : State::Failed);
    Q_EMIT completed(message.isEmpty() ? finalPath : partPath, samples / kSamplesPerMs, message);
    finishing = false;
}

void RecorderWorker::drain() {
    closeMicrophone();
    if (state == State::Recording) // an error may have ended the session
        render(true);
}

// Removes ".part" from the finished file's name and returns its path; empty if that failed.
QString RecorderWorker::keepFile() {
    const QString finalPath = partPath.chopped(std::min(kPartSuffixLength, partPath.size()));
    return QFile::rename(partPath, finalPath) ? finalPath : QString();
}

void RecorderWorker::stopDevices() {
    closeMicrophone();
    microphoneUnheard = false;
    if (backend)
        backend->stop();
    activeSource.clear();
}

} // namespace qn

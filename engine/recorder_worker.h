#pragma once

#include "core/settings.h"
#include "core/state.h"
#include "engine/timeline_mixer.h"

#include <QByteArray>
#include <QDateTime>
#include <QJsonObject>
#include <QObject>
#include <QString>

#include <chrono>
#include <memory>

class QTimer;

namespace qn {

class CaptureBackend;
class Encoder;
class MicrophoneBackend;
struct AudioBlock;
struct Catalog;
struct MicrophoneEntry;
struct Selection;

// Runs one recording at a time: far side and microphone through the mixer into the encoder. Lives
// on a thread of its own, to which others queue their calls. The file's name ends in ".part" until
// it is complete. recorder_worker.cpp runs the session, recorder_sources.cpp opens the two sources
// and reopens them when they change or fail.
class RecorderWorker : public QObject {
    Q_OBJECT

public:
    RecorderWorker();
    ~RecorderWorker() override;

public Q_SLOTS:
    // Ignored while a session runs. `partPath` ends in ".part".
    void begin(const qn::Settings& settings, const QString& partPath);
    // Closes the sources and keeps the file open; the file has no gap for the pause.
    void pause();
    void resume();
    void stop();

Q_SIGNALS:
    void stateChanged(qn::State);
    void began(const QDateTime&); // UTC
    void progress(qint64 durationMs);
    void levels(float microphone, float system); // peaks, full scale 1.0
    // A source was opened, or a warning; `details` is for the journal.
    void sourceChanged(const QString& description, const QJsonObject& details);
    // The final path, or the ".part" path with the first error of the session.
    void completed(const QString& path, qint64 durationMs, const QString& error);

private:
    using Clock = std::chrono::steady_clock;

    void setState(State next);
    void tick();
    void watch(Clock::time_point now);
    void render(bool flush);
    void finish(const QString& error);
    void drain();
    QString keepFile();
    bool diskIsFull() const;
    void stopDevices();
    void push(int input, const AudioBlock& block);
    void restartTimeline();
    void openSources();
    qint64 samplesWritten() const;
    float currentLevel(int input) const;

    void openBackends();
    void refreshSources();
    void refreshFarSide();
    void refreshMicrophone();
    void announceFarSide(const QString& previous, const Selection& selection,
                         const Catalog& catalog);
    void startMicrophone(const MicrophoneEntry* wanted);
    void announceMicrophone();
    void closeMicrophone();
    void microphoneDelivered(const AudioBlock& block);
    void microphoneLost();
    void warning(const QString& text);

    State state = State::Idle;
    Settings settings;
    QString partPath;
    QString activeSource; // far-side id being captured; empty when none is open
    QString lastWarning;
    QString pendingError;    // arrived while finish was running
    QByteArray microphoneId; // empty when no microphone is open
    QString microphoneName;  // of the one opened last
    std::unique_ptr<CaptureBackend> backend;
    // Kept until the next recording, because a session may end inside one of its signals.
    std::unique_ptr<MicrophoneBackend> microphone;
    std::unique_ptr<Encoder> encoder;
    QTimer* timer = nullptr;
    TimelineMixer mixer;
    Clock::time_point sessionStart; // of the segment since the last pause; the mixer's origin
    qint64 accumulatedSamples = 0;  // of the segments that ended with a pause
    Clock::time_point lastRefresh;
    Clock::time_point lastProgress;
    Clock::time_point lastBlock[2]; // by mixer input; opening the microphone counts as a block
    bool microphoneUnheard = false; // reopened for lack of blocks, and none has come yet
    bool finishing = false;
};

} // namespace qn

#pragma once

#include "capture/capture_backend.h"
#include "capture/microphone.h"
#include "core/recording.h"
#include "core/settings.h"
#include "core/state.h"
#include "export/export_job.h"
#include "storage/library.h"
#include "ui/common/control_rules.h"
#include "ui/common/message_box.h"

#include <QAudioOutput>
#include <QFile>
#include <QList>
#include <QMainWindow>
#include <QMediaPlayer>
#include <QThread>

#include <functional>
#include <memory>

class QLabel;
class QTextEdit;

namespace qn {

class ActionBar;
class ExportBar;
class FilterBar;
class LibraryWriter;
class PlaybackPanel;
class RecorderWorker;
class RecordingPanel;
class RecordingTable;
class SettingsDialog;
class WaveformTimeline;

// The main window. Owns the library, the worker with its thread, the export job and the player, and
// connects them with the widgets. It mirrors the worker's state and calls the worker only by queued
// invocations. Its source files go by subject: window.cpp builds it and lists the sources,
// window_recording.cpp records, window_library.cpp browses, window_playback.cpp plays,
// window_actions.cpp exports, repairs, renames, deletes and closes.
class Window : public QMainWindow {
    Q_OBJECT

public:
    // Opens the library in that folder; throws std::runtime_error if that fails.
    explicit Window(const QString& dataDirectory);

    // Finishes a running recording before it returns.
    ~Window() override;

    // Closes without asking; a running recording is finished and saved first.
    void saveAndClose();

protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private Q_SLOTS:
    void refreshCatalog();
    void savePreferences();
    void startRecording();
    void stateChanged(qn::State newState);
    void recordingFinished(const QString& path, qint64 durationMs, const QString& error);
    void refreshLibrary();
    void selectionChanged();
    void playSelected();
    void seekPlayback(qint64 deltaMs);
    void updatePlaybackControls();
    void exportSelected();
    void recoverSelected();
    void renameSelected();
    void deleteSelected();
    void showError(const QString& message, const qn::MessageNotes& notes = {});

private:
    void buildUi();
    void recolour();
    QWidget* buildHeader();
    void buildMenu();
    void connectControls();
    void connectWorker();
    void bindShortcuts();
    void changeSourceKind(int kind);

    bool askForMicrophone();
    void microphoneAnswered(bool granted);
    void togglePause();
    void stopRecording();
    void invokeWorker(void (RecorderWorker::*slot)());
    void recordingBegan(const QDateTime& startedUtc);
    void recordingProgress(qint64 durationMs);
    void showFailure(const QString& error, const QString& path, bool hadBegun);
    void sourceChanged(const QString& description, const QJsonObject& details);

    // Throws what the library throws: the program must not start with one that can't be read.
    void adoptFinishedFiles();
    void tellInterrupted();
    void showDetails();
    const Recording* selected() const;
    SelectionFacts selectionFacts() const;
    void openFolder();
    void showContextMenu(const QPoint& place);

    void connectPlayer();
    void setPlayerSource(const QString& path);
    void loadPlayer(const QUrl& url);
    void togglePlayback();
    void showPosition(qint64 positionMs);
    void showDuration(qint64 durationMs);

    void exportFinished(bool success, const QString& message);
    QString completeRecovery();
    bool confirm(const QString& title, const QString& question);
    void requestClose();
    bool deferCloseToRecording();
    bool mayCancelExport();

    // For what the user asked for: shows a library error at once.
    bool tryLibrary(const std::function<void()>& action);
    // For the rest: shows only the first error, after the present work, until the library works
    // again.
    void tryLibraryQuietly(const std::function<void()>& action);
    void libraryRefused(const QString& reason);
    void showLibraryError(const QString& reason);

    std::unique_ptr<Library> library;
    std::unique_ptr<LibraryWriter> writer;          // for what the user is not waiting for
    std::unique_ptr<CaptureBackend> backend;        // lists sources only
    std::unique_ptr<MicrophoneBackend> microphones; // lists them only
    Settings settings;
    Catalog catalog;
    QThread workerThread;
    RecorderWorker* worker = nullptr; // lives on workerThread, which deletes it
    ExportJob exportJob;
    QFile playedFile; // outlives the player, whose own threads read it
    QMediaPlayer player;
    QAudioOutput audioOutput;
    QList<Recording> rows; // of the table, in its order
    Recording current;     // in progress; the id is empty if none is
    State state = State::Idle;
    bool populating = false;        // the source combos are being refilled
    bool libraryErrorShown = false; // until the library works again
    bool closePending = false;
    bool closing = false; // the program ends: no message boxes, nothing is loaded
    bool recovering = false;
    Recording exportSubject; // being repaired
    QString recoveryTarget;

    SettingsDialog* settingsDialog = nullptr;
    RecordingPanel* recordingPanel = nullptr;
    FilterBar* filterBar = nullptr;
    RecordingTable* table = nullptr;
    ActionBar* actionBar = nullptr;
    WaveformTimeline* waveform = nullptr;
    PlaybackPanel* playbackPanel = nullptr;
    ExportBar* exportBar = nullptr;
    QTextEdit* details = nullptr;
    QLabel* freeSpace = nullptr; // in the status bar, while recording
    QString shownDetails;
    struct {
        QString caption; // the far side's last one; the microphone's warning may have replaced it
        bool isWarning = false;
    } farSide;
};

} // namespace qn

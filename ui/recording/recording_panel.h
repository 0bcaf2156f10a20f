#pragma once

#include "core/state.h"
#include "ui/recording/silence_watch.h"

#include <QElapsedTimer>
#include <QGroupBox>

class QLabel;
class QLineEdit;
class QPushButton;

namespace qn {

class LevelMeter;

// The controls of the recording in progress: title, clock, buttons, status and both level meters.
class RecordingPanel : public QGroupBox {
    Q_OBJECT

public:
    explicit RecordingPanel(QWidget* parent = nullptr);

    QString title() const; // trimmed

    void showState(State state);
    void setElapsed(qint64 ms);
    // Peaks, full scale 1.0. While recording they are watched for silence: see silenceChanged().
    void setLevels(float microphone, float system);
    // An unused microphone has a grey meter and is not watched for silence.
    void setMicrophoneUsed(bool used);
    void setMicrophoneCaption(const QString& caption);
    void setSystemCaption(const QString& caption, bool isWarning = false);
    void setRecordEnabled(bool enabled);

Q_SIGNALS:
    // Advice for the user about a side that has long been silent; empty when no side is any more.
    void silenceChanged(const QString& advice);

public:
    QPushButton* const recordButton;
    QPushButton* const pauseButton;
    QPushButton* const stopButton;

protected:
    void changeEvent(QEvent* event) override;

private:
    QWidget* buildTitleRow();
    QWidget* buildButtonRow();
    QWidget* buildMeterRow();
    void enable(QWidget* control, bool enabled);
    void passFocusTo(QPushButton* button);
    void watchSilence(float microphone, float system);

    QLineEdit* titleField = nullptr;
    QLabel* elapsed = nullptr;
    QLabel* status = nullptr;
    QLabel* microphoneCaption = nullptr;
    LevelMeter* microphoneMeter = nullptr;
    QLabel* systemCaption = nullptr;
    LevelMeter* systemMeter = nullptr;
    QElapsedTimer clock;
    SilenceWatch microphoneSilence;
    SilenceWatch systemSilence;
    QString advice; // emitted last, still without the time
    bool isRecording = false;
};

} // namespace qn

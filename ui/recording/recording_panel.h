#pragma once

#include "core/state.h"

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
    void setLevels(float microphone, float system);
    void setMicrophoneCaption(const QString& caption);
    void setSystemCaption(const QString& caption);
    void setRecordEnabled(bool enabled);

    QPushButton* const recordButton;
    QPushButton* const pauseButton;
    QPushButton* const stopButton;

private:
    QWidget* buildTitleRow();
    QWidget* buildButtonRow();
    QWidget* buildMeterRow();
    void enable(QWidget* control, bool enabled);
    void passFocusTo(QPushButton* button);

    QLineEdit* titleField = nullptr;
    QLabel* elapsed = nullptr;
    QLabel* status = nullptr;
    QLabel* microphoneCaption = nullptr;
    LevelMeter* microphoneMeter = nullptr;
    QLabel* systemCaption = nullptr;
    LevelMeter* systemMeter = nullptr;
};

} // namespace qn

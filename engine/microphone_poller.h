#pragma once

#include "engine/microphone_pace.h"

#include <QObject>
#include <QTimer>

class QIODevice;

namespace qn {

// Emits the readyRead of the microphone's device equally long after each packet, in Qt's stead: Qt
// polls PulseAudio at moments of its own, and blocks would seem punctual and 100 ms late in turns.
// A child of the device, used on its thread.
class MicrophonePoller : public QObject {
    Q_OBJECT

public:
    explicit MicrophonePoller(QIODevice& microphone);

    // To be told after each reading how much it found, in nanoseconds.
    void found(qint64 duration);

private:
    void poll();
    void wait();

    QIODevice& device;
    MicrophonePace pace;
    QTimer timer;
};

} // namespace qn

#pragma once

#include "engine/microphone_pace.h"

#include <QObject>
#include <QTimer>

class QIODevice;

namespace qn {

// Says readyRead for the microphone's device in good time. Qt looks for PulseAudio's data on a
// timer of its own, just before they arrive or just after, and blocks would seem punctual and
// 100 ms late in turns; its signal is held back. A child of the device, used on its thread.
class MicrophoneLookout : public QObject {
    Q_OBJECT

public:
    explicit MicrophoneLookout(QIODevice& device);

    // To be told after each reading how much it found, in nanoseconds.
    void found(qint64 duration);

private:
    void look();
    void wait();

    QIODevice& device;
    MicrophonePace pace;
    QTimer timer;
};

} // namespace qn

#include "engine/microphone_poller.h"

#include "core/audio_block.h"

#include <QIODevice>

#include <algorithm>
#include <chrono>

namespace qn {

MicrophonePoller::MicrophonePoller(QIODevice& microphone)
    : QObject(&microphone), device(microphone), pace(steadyNowNs()) {
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    timer.callOnTimeout(this, &MicrophonePoller::poll);
    device.blockSignals(true);
    wait();
}

void MicrophonePoller::found(qint64 duration) {
    device.blockSignals(true); // poll() let one signal through
    pace.found(steadyNowNs(), duration);
    wait();
}

void MicrophonePoller::poll() {
    if (!pace.shouldRead(steadyNowNs())) {
        wait();
        return;
    }
    device.blockSignals(false);
    Q_EMIT device.readyRead(); // may end the recording, and with it this object
}

void MicrophonePoller::wait() {
    using namespace std::chrono;
    const nanoseconds left(std::max<qint64>(pace.nextPoll() - steadyNowNs(), 0));
    timer.start(ceil<milliseconds>(left));
}

} // namespace qn

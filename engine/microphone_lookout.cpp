#include "engine/microphone_lookout.h"

#include "core/audio_block.h"

#include <QIODevice>

#include <algorithm>
#include <chrono>

namespace qn {

MicrophoneLookout::MicrophoneLookout(QIODevice& microphone)
    : QObject(&microphone), device(microphone), pace(steadyNowNs()) {
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    timer.callOnTimeout(this, &MicrophoneLookout::look);
    device.blockSignals(true);
    wait();
}

void MicrophoneLookout::found(qint64 duration) {
    device.blockSignals(true);
    pace.found(steadyNowNs(), duration);
    wait();
}

void MicrophoneLookout::look() {
    if (!pace.isTime(steadyNowNs())) {
        wait();
        return;
    }
    device.blockSignals(false);
    Q_EMIT device.readyRead(); // may end the recording, and with it this object
}

void MicrophoneLookout::wait() {
    using namespace std::chrono;
    const nanoseconds left(std::max<qint64>(pace.nextLook() - steadyNowNs(), 0));
    timer.start(ceil<milliseconds>(left));
}

} // namespace qn

#include "engine/paced_microphone.h"

#include "core/audio_block.h"

#include <QPointer>

#include <algorithm>
#include <chrono>
#include <cstring>

namespace qn {

PacedMicrophone::PacedMicrophone(QIODevice& microphone, const QAudioFormat& audioFormat)
    : QIODevice(&microphone), source(microphone), format(audioFormat), pace(steadyNowNs()) {
    open(ReadOnly | Unbuffered);
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    timer.callOnTimeout(this, &PacedMicrophone::poll);
    schedulePoll();
}

qint64 PacedMicrophone::readData(char* data, qint64 maxSize) {
    waiting += source.readAll();
    const qint64 size = std::min<qint64>(waiting.size(), maxSize);
    std::memcpy(data, waiting.constData(), static_cast<size_t>(size));
    waiting.remove(0, size);
    return size;
}

qint64 PacedMicrophone::writeData(const char*, qint64) {
    return -1;
}

void PacedMicrophone::poll() {
    waiting += source.readAll();
    const qint64 waitingUs = format.durationForBytes(static_cast<qint32>(waiting.size()));
    if (pace.shouldRead(steadyNowNs(), waitingUs * 1000)) {
        const QPointer<PacedMicrophone> self(this); // reading may end the recording
        Q_EMIT readyRead();
        if (!self)
            return;
    }
    schedulePoll();
}

void PacedMicrophone::schedulePoll() {
    using namespace std::chrono;
    const nanoseconds left(std::max<qint64>(pace.nextPoll() - steadyNowNs(), 0));
    timer.start(ceil<milliseconds>(left));
}

} // namespace qn

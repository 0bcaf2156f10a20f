#pragma once

#include "engine/microphone_pace.h"

#include <QAudioFormat>
#include <QByteArray>
#include <QIODevice>
#include <QTimer>

namespace qn {

// An open microphone that says readyRead equally long after each packet came. Qt's own polls
// PulseAudio at moments of its own, and blocks would seem punctual and 100 ms late in turns. A
// child of the wrapped device, used on its thread.
class PacedMicrophone : public QIODevice {
    Q_OBJECT

public:
    PacedMicrophone(QIODevice& microphone, const QAudioFormat& audioFormat);

    bool isSequential() const override { return true; }

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char* data, qint64 size) override;

private:
    void poll();
    void schedulePoll();

    QIODevice& source;
    QAudioFormat format;
    QByteArray waiting;
    MicrophonePace pace;
    QTimer timer;
};

} // namespace qn

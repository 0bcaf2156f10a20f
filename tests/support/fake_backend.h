#pragma once

#include "capture/capture_backend.h"
#include "capture/microphone.h"

#include <QStringList>

#include <chrono>

namespace qn::testing {

using namespace Qt::StringLiterals;

// Knobs and observations of the backends that the factories hand out in a test program. The test
// sets the knobs while no session runs.
struct FakePlatform {
    Catalog catalog{{{u"card"_s, u"Карта"_s}, {u"speakers"_s, u"Колонки"_s}},
                    {{u"app"_s, u"Звонилка"_s}},
                    u"speakers"_s};
    QString startError;                      // non-empty: every start fails with it
    std::chrono::milliseconds startTakes{0}; // of the far side
    std::chrono::milliseconds delay{0};      // with which playTone delivers
    MicrophoneList microphones{{{"webcam", u"Камера"_s}, {"headset", u"Гарнитура"_s}}, "headset"};
    bool microphoneDelivers = true; // silence, with every call of playTone
    float microphoneLast = 0;       // peak of the 10 ms that it still holds when it is stopped

    QStringList started; // ids, in order; microphones' too
    int alive = 0;       // backends that exist, microphones' too
    QList<CaptureBackend*> capturing;
    QList<MicrophoneBackend*> listening;

    static FakePlatform& instance();
};

// Emits what a tone has played since the last call (1 s at most) on every capturing backend.
void playTone();
void breakDown(const QString& message);

} // namespace qn::testing

#include "ui/recording/silence_watch.h"

namespace qn {

namespace {

constexpr float kSilence = 0.0031623F; // -50 dBFS
constexpr qint64 kLongMs = 10000;

} // namespace

qint64 SilenceWatch::update(float level, qint64 nowMs) {
    if (level >= kSilence)
        heardMs = nowMs;
    const qint64 silentMs = nowMs - heardMs;
    return silentMs >= kLongMs ? silentMs : 0;
}

} // namespace qn

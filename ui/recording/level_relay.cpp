#include "ui/recording/level_relay.h"

#include <algorithm>

namespace qn {

void LevelRelay::add(float microphone, float system) {
    loudestMicrophone = std::max(loudestMicrophone, microphone);
    loudestSystem = std::max(loudestSystem, system);
    const bool isSilent = microphone <= 0 && system <= 0; // the last of all levels may be that
    isWaiting = !isWaiting && !isSilent;
    if (isWaiting)
        return;
    Q_EMIT levels(isSilent ? 0 : loudestMicrophone, isSilent ? 0 : loudestSystem);
    loudestMicrophone = 0;
    loudestSystem = 0;
}

} // namespace qn

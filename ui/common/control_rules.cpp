#include "ui/common/control_rules.h"

namespace qn {

bool isPlayable(const SelectionFacts& facts) {
    return facts.hasSelection && !facts.isCurrent && facts.fileExists;
}

bool mayPlay(const SelectionFacts& facts) {
    return isPlayable(facts) && isResting(facts.state);
}

ActionRules actionRules(const SelectionFacts& facts) {
    const bool idleRow = facts.hasSelection && !facts.isCurrent;
    const bool exportable = isPlayable(facts) && !facts.exporting;
    return {.exportAudio = exportable,
            .recover = exportable && !facts.ready,
            .rename = idleRow,
            .remove = idleRow && !facts.exporting,
            .openFolder = facts.hasSelection};
}

PlaybackRules playbackRules(const SelectionFacts& selection, const PlayerFacts& player) {
    if (!mayPlay(selection))
        return {};
    if (!player.loaded)
        return {.play = true};
    return {.play = !player.playing,
            .pause = player.playing,
            .seek = player.seekable && player.hasDuration};
}

} // namespace qn

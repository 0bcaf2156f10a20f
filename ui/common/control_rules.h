#pragma once

#include "core/state.h"

namespace qn {

// What the controls below the table depend on.
struct SelectionFacts {
    bool hasSelection = false;
    bool isCurrent = false; // the selected row is being recorded
    bool fileExists = false;
    bool ready = false; // its stored status
    bool exporting = false;
    State state = State::Idle;
};

struct ActionRules {
    bool exportAudio = false;
    bool recover = false;
    bool rename = false;
    bool remove = false;
    bool openFolder = false;
};

struct PlayerFacts {
    bool loaded = false; // the player's source is the selected file
    bool playing = false;
    bool seekable = false;
    bool hasDuration = false;
};

struct PlaybackRules {
    bool play = false;
    bool pause = false;
    bool seek = false;
};

// There is a file that nobody is writing: its waveform is shown, even while another is recorded.
bool isPlayable(const SelectionFacts& facts);

// Nothing is played while a session runs, or the recording would record it.
bool mayPlay(const SelectionFacts& facts);

ActionRules actionRules(const SelectionFacts& facts);
PlaybackRules playbackRules(const SelectionFacts& selection, const PlayerFacts& player);

} // namespace qn

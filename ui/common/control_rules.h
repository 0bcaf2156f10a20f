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

// Whether the file exists and is not being recorded: its waveform can be shown, even during another
// recording.
bool isPlayable(const SelectionFacts& facts);

// Nothing is played while a session runs, because the recording would pick it up.
bool mayPlay(const SelectionFacts& facts);

ActionRules actionRules(const SelectionFacts& facts);
PlaybackRules playbackRules(const SelectionFacts& selection, const PlayerFacts& player);

} // namespace qn

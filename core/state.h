#pragma once

#include <QtGlobal>

namespace qn {

// What a recording session is doing. The numbers are fixed: they travel in data streams.
enum class State : qint32 {
    Idle = 0,       // no session; ready to record
    Starting = 1,   // encoder and sources are being opened
    Recording = 2,  // audio is captured and written
    Paused = 3,     // session open, nothing written
    Finalizing = 4, // inputs stopped, file being finished
    Failed = 5,     // the last session ended with an error; a resting state like Idle
};

// True in the two states in which a new session may begin.
constexpr bool isResting(State state) {
    return state == State::Idle || state == State::Failed;
}

} // namespace qn

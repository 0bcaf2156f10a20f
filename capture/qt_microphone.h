#pragma once

#include "capture/microphone.h"

namespace qn {

// Microphones through Qt's audio input, for platforms without an implementation of their own.
std::unique_ptr<MicrophoneBackend> makeQtMicrophone();

} // namespace qn

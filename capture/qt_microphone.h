#pragma once

#include "capture/microphone.h"

namespace qn {

// A microphone backend on Qt's audio input, for platforms without one of their own.
std::unique_ptr<MicrophoneBackend> makeQtMicrophone();

} // namespace qn

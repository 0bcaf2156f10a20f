#pragma once

#include "capture/macos/audio_object.h"
#include "core/audio_block.h"

#include <optional>

namespace qn {

// Owns the IO procedure on a device: stopped and removed with its owner, before the device goes.
class OwnedIoProcedure {
public:
    OwnedIoProcedure() = default;
    ~OwnedIoProcedure() { destroy(); }
    Q_DISABLE_COPY_MOVE(OwnedIoProcedure)

    OSStatus create(AudioObjectID onDevice, AudioDeviceIOProc procedure, void* clientData);
    OSStatus start();

    // No callback runs after this returns.
    void destroy();

private:
    AudioObjectID device = kAudioObjectUnknown;
    AudioDeviceIOProcID id = nullptr; // null: none
};

// One IO cycle as a block, stamped with the device's own time when it has one and else as having
// ended just now; none when the buffers can't be used. For the real-time thread: waits for nothing
// and allocates nothing but the block's samples.
std::optional<AudioBlock> captureBlock(const AudioStreamBasicDescription& format,
                                       const AudioBufferList* input,
                                       const AudioTimeStamp* inputTime);

} // namespace qn

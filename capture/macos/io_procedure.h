#pragma once

#include "capture/capture_backend.h"
#include "capture/macos/audio_object.h"
#include "core/audio_block.h"

#include <atomic>
#include <memory>
#include <optional>

namespace qn {

// Shared with the platform's real-time thread without a lock: once `receiver` is null and `busy` is
// false, no more blocks are emitted.
struct IoClient {
    AudioStreamBasicDescription format = {};
    std::atomic<CaptureBackend*> receiver;
    std::atomic<bool> busy = false;
};

// Owns the IO procedure that emits what a device captures through a backend's `block`. To be
// destroyed before the device.
class OwnedIoProcedure {
public:
    OwnedIoProcedure() = default;
    ~OwnedIoProcedure() { destroy(); }
    Q_DISABLE_COPY_MOVE(OwnedIoProcedure)

    OSStatus create(AudioObjectID onDevice, const AudioStreamBasicDescription& format,
                    CaptureBackend& receiver);
    OSStatus start();

    // No block is emitted after this returns. False if the platform did not stop and remove the
    // procedure: it may still run, so its data is never freed and the device must stay too.
    bool destroy();

private:
    AudioObjectID device = kAudioObjectUnknown;
    AudioDeviceIOProcID id = nullptr; // null: none
    bool started = false;
    std::unique_ptr<IoClient> client;
};

// One IO cycle as a block, with the device's own timestamp if there is one, otherwise as ending
// now; none if the buffers can't be used. For the real-time thread: it never waits and allocates
// only the block's samples.
std::optional<AudioBlock> captureBlock(const AudioStreamBasicDescription& format,
                                       const AudioBufferList* input,
                                       const AudioTimeStamp* inputTime);

} // namespace qn

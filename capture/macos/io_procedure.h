#pragma once

#include "capture/capture_backend.h"
#include "capture/macos/audio_object.h"
#include "core/audio_block.h"

#include <atomic>
#include <memory>
#include <optional>

namespace qn {

// What the platform's real-time thread works with. Neither locks: a cut receiver gets no block once
// `busy` is false.
struct IoClient {
    AudioStreamBasicDescription format = {};
    std::atomic<CaptureBackend*> receiver;
    std::atomic<bool> busy = false;
};

// Owns the IO procedure that hands what a device captures to a backend's `block`: stopped and
// removed with its owner, before the device goes.
class OwnedIoProcedure {
public:
    OwnedIoProcedure() = default;
    ~OwnedIoProcedure() { destroy(); }
    Q_DISABLE_COPY_MOVE(OwnedIoProcedure)

    OSStatus create(AudioObjectID onDevice, const AudioStreamBasicDescription& format,
                    CaptureBackend& receiver);
    OSStatus start();

    // No block is emitted after this returns. False when the platform did not stop and remove the
    // procedure: it may run on, so what it uses stays, and the device must stay too.
    bool destroy();

private:
    AudioObjectID device = kAudioObjectUnknown;
    AudioDeviceIOProcID id = nullptr; // null: none
    bool started = false;
    std::unique_ptr<IoClient> client;
};

// One IO cycle as a block, stamped with the device's own time when it has one and else as having
// ended just now; none when the buffers can't be used. For the real-time thread: waits for nothing
// and allocates nothing but the block's samples.
std::optional<AudioBlock> captureBlock(const AudioStreamBasicDescription& format,
                                       const AudioBufferList* input,
                                       const AudioTimeStamp* inputTime);

} // namespace qn

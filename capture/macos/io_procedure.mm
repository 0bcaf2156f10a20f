#include "capture/macos/io_procedure.h"

#include "capture/macos/sample_conversion.h"

#include <QDeadlineTimer>
#include <QThread>

#include <array>
#include <limits>
#include <utility>

namespace qn {

namespace {

using BufferArray = std::array<PcmBuffer, kMaxChannels>;

// The buffers that have channels. The array is large enough, because each of them fills at least
// one of the stream's at most kMaxChannels channels.
std::span<const PcmBuffer> filledBuffers(const AudioBufferList& list, BufferArray& storage) {
    size_t count = 0;
    for (const AudioBuffer& buffer : std::span(list.mBuffers, list.mNumberBuffers)) {
        if (count == storage.size())
            break;
        if (buffer.mNumberChannels != 0)
            storage[count++] = {buffer.mNumberChannels, buffer.mDataByteSize, buffer.mData};
    }
    return std::span(storage).first(count);
}

// The rate as an integer; 0 if it does not fit into one (NaN, infinity, overflow).
qint32 wholeRate(double sampleRate) {
    using Limits = std::numeric_limits<qint32>;
    const bool fits = sampleRate > Limits::min() - 1.0 && sampleRate < Limits::max() + 1.0;
    return fits ? static_cast<qint32>(sampleRate) : 0;
}

qint64 hostToSteady(UInt64 hostTime) {
    const UInt64 hostNs = AudioConvertHostTimeToNanos(hostTime);
    const UInt64 hostNowNs = AudioConvertHostTimeToNanos(AudioGetCurrentHostTime());
    // Unsigned, so that nonsense from a device wraps around instead of overflowing.
    const UInt64 steadyNs = static_cast<UInt64>(steadyNowNs()) - hostNowNs + hostNs;
    return static_cast<qint64>(steadyNs);
}

// None if the device gives no time and the block's length is unknown because the rate is.
std::optional<qint64> firstFrameTime(const AudioTimeStamp* inputTime, qint64 frames, qint32 rate) {
    if (inputTime != nullptr && (inputTime->mFlags & kAudioTimeStampHostTimeValid) != 0)
        return hostToSteady(inputTime->mHostTime);
    if (rate == 0)
        return std::nullopt;
    return steadyNowNs() - durationNs(frames, rate);
}

// Far more than a callback takes: it ends within a cycle of some milliseconds.
constexpr int kLongestCallbackMs = 1000;

// Runs on the platform's real-time thread: it must not wait, lock, touch a file or call
// Objective-C. The receivers of `block` run on other threads, by queued connections.
OSStatus ioProc(AudioObjectID, const AudioTimeStamp*, const AudioBufferList* input,
                const AudioTimeStamp* inputTime, AudioBufferList*, const AudioTimeStamp*,
                void* clientData) noexcept {
    auto* client = static_cast<IoClient*>(clientData);
    client->busy = true;
    if (CaptureBackend* receiver = client->receiver)
        if (const std::optional<AudioBlock> captured =
                captureBlock(client->format, input, inputTime))
            Q_EMIT receiver->block(*captured);
    client->busy = false;
    return noErr;
}

} // namespace

OSStatus OwnedIoProcedure::create(AudioObjectID onDevice, const AudioStreamBasicDescription& format,
                                  CaptureBackend& receiver) {
    destroy();
    device = onDevice;
    client = std::make_unique<IoClient>();
    client->format = format;
    client->receiver = &receiver;
    return logged("AudioDeviceCreateIOProcID", AudioDeviceCreateIOProcID, device, ioProc,
                  client.get(), &id);
}

OSStatus OwnedIoProcedure::start() {
    const OSStatus status = logged("AudioDeviceStart", AudioDeviceStart, device, id);
    started = status == noErr;
    return status;
}

bool OwnedIoProcedure::destroy() {
    if (id == nullptr)
        return true;
    const OSStatus stopped = logged("AudioDeviceStop", AudioDeviceStop, device, id);
    const OSStatus removed = logged("AudioDeviceDestroyIOProcID", AudioDeviceDestroyIOProcID,
                                    device, std::exchange(id, nullptr));
    const bool idle = !std::exchange(started, false) || stopped == noErr ||
                      stopped == kAudioHardwareNotRunningError;
    if (removed == noErr && idle)
        return true;
    client->receiver = nullptr;
    for (const QDeadlineTimer patience(kLongestCallbackMs); client->busy && !patience.hasExpired();)
        QThread::msleep(1);
    static_cast<void>(client.release()); // never freed, as the procedure may still use it
    return false;
}

std::optional<AudioBlock> captureBlock(const AudioStreamBasicDescription& format,
                                       const AudioBufferList* input,
                                       const AudioTimeStamp* inputTime) {
    if (input == nullptr)
        return std::nullopt;
    const PcmFormat pcm = {format.mBitsPerChannel,
                           (format.mFormatFlags & kAudioFormatFlagIsFloat) != 0,
                           static_cast<qint32>(format.mChannelsPerFrame)};
    BufferArray storage;
    const std::span<const PcmBuffer> buffers = filledBuffers(*input, storage);
    const qint64 frames = frameCount(buffers, pcm);
    if (frames == 0)
        return std::nullopt;
    const qint32 rate = wholeRate(format.mSampleRate);
    const std::optional<qint64> timestampNs = firstFrameTime(inputTime, frames, rate);
    if (!timestampNs)
        return std::nullopt;
    AudioBlock block;
    block.samples = interleave(buffers, pcm, frames);
    block.sampleRate = rate;
    block.channels = pcm.channels;
    block.timestampNs = *timestampNs;
    return block;
}

} // namespace qn

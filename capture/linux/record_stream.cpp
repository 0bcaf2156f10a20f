#include "capture/linux/record_stream.h"

#include "capture/linux/channel_order.h"

#include <algorithm>
#include <utility>

namespace qn {

namespace {

// Below 12 kHz the mixer's resampler delivers in bursts longer than the jitter that the mixer
// tolerates, 20 ms.
constexpr quint32 kLowestStreamRate = 16000;

pa_sample_spec floatSpec(const DeviceFacts& device) {
    return {PA_SAMPLE_FLOAT32NE, std::max(device.spec.rate, kLowestStreamRate),
            device.spec.channels};
}

AudioBlock blockFormat(const RecordTarget& target) {
    const pa_sample_spec spec = floatSpec(target.device);
    AudioBlock format;
    format.sampleRate = static_cast<qint32>(spec.rate);
    format.channels = spec.channels;
    format.channelMask = waveOrder(target.device.map).mask;
    format.sourceKey = target.sourceKey;
    return format;
}

} // namespace

RecordStream::RecordStream(pa_mainloop_api* loop, RecordTarget source, Callbacks callbacks)
    : target(std::move(source)),
      builder(blockFormat(target), std::move(callbacks.block)),
      changed(std::move(callbacks.stateChanged)),
      context(loop, [this] { contextChanged(); }) {}

bool RecordStream::isRunning() const {
    return stream && pa_stream_get_state(stream.get()) == PA_STREAM_READY;
}

void RecordStream::contextChanged() {
    if (context.isReady())
        connect();
    else if (context.isFailed())
        breakDown();
}

void RecordStream::connect() {
    const pa_sample_spec spec = floatSpec(target.device);
    const pa_channel_map map = waveOrder(target.device.map).map;
    stream.reset(pa_stream_new(context.get(), "Quorlin", &spec, &map));
    if (!stream) {
        breakDown();
        return;
    }
    setCallbacks();
    if (target.input != PA_INVALID_INDEX)
        pa_stream_set_monitor_stream(stream.get(), target.input);

    constexpr auto kDefault = static_cast<quint32>(-1);
    const qint64 frames = BlockBuilder::framesPerBlock(static_cast<qint32>(spec.rate));
    const pa_buffer_attr attributes{kDefault, kDefault, kDefault, kDefault,
                                    static_cast<quint32>(frames * qint64(pa_frame_size(&spec)))};
    // Without DONT_MOVE the server would carry on with another source, even a microphone.
    constexpr auto kFlags =
        static_cast<pa_stream_flags_t>(PA_STREAM_ADJUST_LATENCY | PA_STREAM_DONT_MOVE);
    if (pa_stream_connect_record(stream.get(), target.device.source.constData(), &attributes,
                                 kFlags) < 0)
        breakDown();
}

void RecordStream::setCallbacks() {
    const auto stateChanged = [](pa_stream*, void* self) {
        static_cast<RecordStream*>(self)->streamChanged();
    };
    const auto moved = [](pa_stream*, void* self) {
        static_cast<RecordStream*>(self)->breakDown();
    };
    const auto readable = [](pa_stream*, size_t, void* self) {
        static_cast<RecordStream*>(self)->read();
    };
    pa_stream_set_state_callback(stream.get(), stateChanged, this);
    pa_stream_set_moved_callback(stream.get(), moved, this);
    pa_stream_set_read_callback(stream.get(), readable, this);
}

void RecordStream::streamChanged() {
    if (PA_STREAM_IS_GOOD(pa_stream_get_state(stream.get())))
        changed();
    else
        breakDown();
}

void RecordStream::read() {
    const void* data = nullptr;
    size_t bytes = 0;
    const size_t frameBytes = pa_frame_size(pa_stream_get_sample_spec(stream.get()));
    while (pa_stream_peek(stream.get(), &data, &bytes) == 0 && bytes > 0) {
        const auto frames = static_cast<qint64>(bytes / frameBytes);
        // `data` is null for a hole in the stream, which counts as silence.
        builder.add(static_cast<const float*>(data), frames, steadyNowNs());
        pa_stream_drop(stream.get());
    }
}

void RecordStream::flush() {
    if (isRunning())
        read();
    builder.flush();
}

void RecordStream::breakDown() {
    if (std::exchange(broken, true))
        return;
    builder.flush();
    stream.reset();
    changed();
}

} // namespace qn

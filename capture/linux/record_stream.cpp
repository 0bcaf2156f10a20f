#include "capture/linux/record_stream.h"

#include "capture/linux/channel_order.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace qn {

namespace {

constexpr quint32 kLowestRate = 8000; // below, the mixer takes nothing

qint64 steadyNs() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
}

pa_sample_spec floatSpec(const SinkFacts& sink) {
    return {PA_SAMPLE_FLOAT32NE, std::max(sink.spec.rate, kLowestRate), sink.spec.channels};
}

AudioBlock blockFormat(const RecordTarget& target) {
    const pa_sample_spec spec = floatSpec(target.sink);
    AudioBlock format;
    format.sampleRate = static_cast<qint32>(spec.rate);
    format.channels = spec.channels;
    format.channelMask = waveOrder(target.sink.map).mask;
    format.sourceKey = target.sourceKey;
    return format;
}

// For a stream that was given up before the server had created it.
void dropWhenCreated(pa_stream* stream, void*) {
    if (pa_stream_get_state(stream) == PA_STREAM_READY)
        pa_stream_disconnect(stream);
}

} // namespace

RecordStream::RecordStream(pa_context* context, const RecordTarget& target, Callbacks callbacks)
    : spec(floatSpec(target.sink)),
      monitor(target.sink.monitor),
      builder(blockFormat(target), std::move(callbacks.block)),
      stateChanged(std::move(callbacks.stateChanged)) {
    const pa_channel_map map = waveOrder(target.sink.map).map;
    stream = pa_stream_new(context, "Quorlin", &spec, &map);
    if (stream)
        connect(target);
}

bool RecordStream::isRunning() const {
    return stream && pa_stream_get_state(stream) == PA_STREAM_READY;
}

void RecordStream::connect(const RecordTarget& target) {
    pa_stream_set_state_callback(
        stream,
        [](pa_stream*, void* self) { static_cast<RecordStream*>(self)->serverChangedState(); },
        this);
    pa_stream_set_moved_callback(
        stream, [](pa_stream*, void* self) { static_cast<RecordStream*>(self)->breakDown(); },
        this);
    pa_stream_set_read_callback(
        stream, [](pa_stream*, size_t, void* self) { static_cast<RecordStream*>(self)->read(); },
        this);
    if (target.input != PA_INVALID_INDEX)
        pa_stream_set_monitor_stream(stream, target.input);

    constexpr auto kDefault = static_cast<quint32>(-1);
    const qint64 frames = BlockBuilder::framesPerBlock(static_cast<qint32>(spec.rate));
    const pa_buffer_attr attributes{kDefault, kDefault, kDefault, kDefault,
                                    static_cast<quint32>(frames * qint64(pa_frame_size(&spec)))};
    // DONT_MOVE: else the server goes on with some other source, a microphone even.
    constexpr auto kFlags =
        static_cast<pa_stream_flags_t>(PA_STREAM_ADJUST_LATENCY | PA_STREAM_DONT_MOVE);
    if (pa_stream_connect_record(stream, monitor.constData(), &attributes, kFlags) < 0)
        release();
}

void RecordStream::serverChangedState() {
    if (!PA_STREAM_IS_GOOD(pa_stream_get_state(stream)))
        breakDown();
    else
        stateChanged();
}

void RecordStream::read() {
    const void* data = nullptr;
    size_t bytes = 0;
    while (stream && pa_stream_peek(stream, &data, &bytes) == 0 && bytes > 0) {
        const auto frames = static_cast<qint64>(bytes / pa_frame_size(&spec));
        builder.add(static_cast<const float*>(data), frames, steadyNs()); // a hole has no data
        pa_stream_drop(stream);
    }
}

void RecordStream::breakDown() {
    builder.flush();
    release();
    stateChanged();
}

void RecordStream::release() {
    if (!stream)
        return;
    pa_stream_set_moved_callback(stream, nullptr, nullptr);
    pa_stream_set_read_callback(stream, nullptr, nullptr);
    pa_stream_set_state_callback(stream, dropWhenCreated, nullptr);
    pa_stream_disconnect(stream);
    pa_stream_unref(std::exchange(stream, nullptr));
}

} // namespace qn

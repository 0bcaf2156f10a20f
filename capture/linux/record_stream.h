#pragma once

#include "capture/linux/block_builder.h"
#include "capture/linux/pulse_context.h"
#include "capture/linux/pulse_handles.h"
#include "capture/linux/server_snapshot.h"

#include <functional>

namespace qn {

struct RecordTarget {
    DeviceFacts device;
    quint32 input; // only this stream of those that the sink plays, or PA_INVALID_INDEX
    QString sourceKey;
};

// One recording of a microphone, or of what a sink, or one stream on it, plays. It never moves to
// another source: it breaks instead, for good. It has a connection of its own, because PipeWire's
// server delivers only the first of a client's recordings in time. Used under the main loop's lock.
class RecordStream {
public:
    // Both come on the main loop's thread, never from within a call here.
    struct Callbacks {
        BlockReceiver block;
        std::function<void()> stateChanged;
    };

    RecordStream(pa_mainloop_api* loop, RecordTarget source, Callbacks callbacks);
    RecordStream(const RecordStream&) = delete;
    RecordStream& operator=(const RecordStream&) = delete;
    ~RecordStream() = default;

    bool isRunning() const;
    bool isBroken() const { return broken || context.isFailed(); }
    bool hasLostServer() const { return context.isFailed(); }

    // Hands out all that has come so far, when no more is wanted.
    void flush();

private:
    void contextChanged();
    void connect();
    void setCallbacks();
    void streamChanged();
    void read();
    void breakDown();

    RecordTarget target;
    BlockBuilder builder;
    std::function<void()> changed;
    PulseContext context;
    PulseHandle<pa_stream> stream; // once the context is ready, until it breaks
    bool broken = false;
};

} // namespace qn

#pragma once

#include "capture/linux/block_builder.h"
#include "capture/linux/pulse_context.h"
#include "capture/linux/pulse_handles.h"
#include "capture/linux/server_snapshot.h"

#include <functional>

namespace qn {

struct RecordTarget {
    DeviceFacts device;
    quint32 input; // the only stream of the sink to record; PA_INVALID_INDEX for all
    QString sourceKey;
};

// One recording of a microphone, of a sink or of one stream on a sink. It never moves to another
// source but breaks, for good. It has a connection of its own, because PipeWire delivers only the
// first of a client's recordings in time. Used under the main loop's lock.
class RecordStream {
public:
    // Called on the main loop's thread, never from within a call to this class.
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

    // Hands out all samples that have arrived, at the end.
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
    PulseHandle<pa_stream> stream; // null until the context is ready and after a break
    bool broken = false;
};

} // namespace qn

#pragma once

#include "capture/linux/block_builder.h"
#include "capture/linux/pulse_handles.h"
#include "capture/linux/server_snapshot.h"

#include <functional>

namespace qn {

struct RecordTarget {
    SinkFacts sink;
    quint32 input; // only this stream of those that the sink plays, or PA_INVALID_INDEX
    QString sourceKey;
};

// One recording of what a sink, or one stream on it, plays. It never moves to another source: it
// breaks instead, for good. Used under the main loop's lock; both callbacks come on its thread.
class RecordStream {
public:
    struct Callbacks {
        BlockBuilder::Sink block;
        std::function<void()> stateChanged;
    };

    RecordStream(pa_context* context, const RecordTarget& target, Callbacks callbacks);
    RecordStream(const RecordStream&) = delete;
    RecordStream& operator=(const RecordStream&) = delete;
    ~RecordStream() { release(); }

    bool isRunning() const;
    bool isBroken() const { return !stream; }

private:
    void connect(const RecordTarget& target);
    void serverChangedState();
    void read();
    void breakDown();
    void release();

    pa_stream* stream = nullptr; // released when broken
    pa_sample_spec spec{};
    QByteArray monitor;
    BlockBuilder builder;
    std::function<void()> stateChanged;
};

} // namespace qn

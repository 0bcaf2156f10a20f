#pragma once

#include "capture/linux/pulse_connection.h"
#include "capture/linux/pulse_timer.h"
#include "capture/linux/record_stream.h"
#include "capture/linux/stream_plan.h"

#include <QHash>

#include <memory>
#include <unordered_map>

namespace qn {

// Records every stream that one application plays, each under a source key of its own, and follows
// them as they start, end and move. Used under the connection's lock, while the connection stands.
class ApplicationCapture {
public:
    // Begins with the streams of `snapshot`.
    ApplicationCapture(const PulseConnection& connection, QString applicationId,
                       QString ownProcessId, BlockBuilder::Sink receiver);
    ApplicationCapture(const ApplicationCapture&) = delete;
    ApplicationCapture& operator=(const ApplicationCapture&) = delete;
    ~ApplicationCapture();

private:
    struct Recording {
        quint32 sink;
        int slot; // names the source key; free ones are used again
        std::unique_ptr<RecordStream> stream;
    };

    void subscribe();
    void check();
    void follow(const ServerSnapshot& snapshot);
    void open(const InputFacts& input, const ServerSnapshot& snapshot);
    int freeSlot() const;

    pa_context* context;
    pa_mainloop_api* loop;
    QString applicationId;
    QString ownProcessId;
    BlockBuilder::Sink sink;
    std::unordered_map<quint32, Recording> recordings; // by stream index
    std::unique_ptr<ServerQuery> query;                // unanswered
    PulseTimer quiet;                                  // until nothing has changed for a while
    PulseTimer interval;                               // until the next check anyway
};

} // namespace qn

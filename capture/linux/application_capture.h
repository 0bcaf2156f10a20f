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
// them as they start, end and move. Used under the connection's lock. Must be destroyed no later
// than when the connection is lost.
class ApplicationCapture {
public:
    // Begins with the streams of `snapshot`.
    ApplicationCapture(const PulseConnection& connection, QString applicationId,
                       QString ownProcessId, BlockReceiver blockReceiver);
    ApplicationCapture(const ApplicationCapture&) = delete;
    ApplicationCapture& operator=(const ApplicationCapture&) = delete;
    ~ApplicationCapture();

private:
    struct OpenStream {
        quint32 sink; // where it played when it was opened
        int slot;     // gives the source key; free numbers are reused
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
    BlockReceiver receiver;
    std::unordered_map<quint32, OpenStream> openStreams; // by stream index
    std::unique_ptr<ServerQuery> query;                  // awaiting its answer, or null
    PulseTimer quiet;                                    // runs kQuietTime after each event
    PulseTimer interval;                                 // runs kCheckInterval after each check
};

} // namespace qn

#pragma once

#include "capture/linux/pulse_context.h"
#include "capture/linux/pulse_handles.h"
#include "capture/linux/server_query.h"
#include "capture/linux/server_snapshot.h"

#include <chrono>
#include <functional>
#include <memory>

namespace qn {

// The connection to the sound server, made on first use and again after it broke. The owner's
// thread calls it while holding a Lock; callbacks come on the client library's own thread, under
// the same lock. No wait is longer than its deadline, whatever the server does.
class PulseConnection {
public:
    using Clock = std::chrono::steady_clock;

    class Lock {
    public:
        explicit Lock(const PulseConnection& connection);
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;
        ~Lock();

    private:
        pa_threaded_mainloop* loop;
    };

    // `whenLost` is called when a ready connection is gone.
    explicit PulseConnection(std::function<void()> whenLost);
    PulseConnection(const PulseConnection&) = delete;
    PulseConnection& operator=(const PulseConnection&) = delete;
    ~PulseConnection();

    // Brings the snapshot up to date; false when the server did not answer in time.
    bool refresh(Clock::time_point deadline);

    // What the server answered last; empty without a connection.
    const ServerSnapshot& snapshot() const { return known; }

    // Whether a refresh went unanswered and none was answered since: it is unlikely to answer now.
    bool unresponsive() const { return isUnresponsive; }

    // Null while there is no ready connection.
    pa_context* readyContext() const;

    pa_mainloop_api* loopApi() const { return pa_threaded_mainloop_get_api(loop.get()); }

    // Waits until `condition`, tested under the lock, holds after a wake(); false at the deadline.
    bool waitFor(const std::function<bool()>& condition, Clock::time_point deadline);

    // Makes waitFor test its condition again; on the library's thread only.
    void wake() { pa_threaded_mainloop_signal(loop.get(), 0); }

private:
    bool connect(Clock::time_point deadline);
    void contextChanged();
    bool ask(Clock::time_point deadline);

    std::function<void()> lost;
    PulseHandle<pa_threaded_mainloop> loop;
    std::unique_ptr<PulseContext> context;
    std::unique_ptr<ServerQuery> query; // unanswered
    ServerSnapshot known;
    bool isFresh = false;  // the last query was answered
    bool wasReady = false; // the context, before it fails
    bool isUnresponsive = false;
};

} // namespace qn

#pragma once

#include "capture/linux/pulse_context.h"
#include "capture/linux/pulse_handles.h"
#include "capture/linux/server_query.h"
#include "capture/linux/server_snapshot.h"

#include <chrono>
#include <functional>
#include <list>
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

    // While it lives, its functions are called on the client library's thread.
    class Watch {
    public:
        // `lost`: a ready connection is gone. `refreshed`: the snapshot is new.
        Watch(PulseConnection& watched, std::function<void()> lost,
              std::function<void()> refreshed);
        Watch(const Watch&) = delete;
        Watch& operator=(const Watch&) = delete;
        ~Watch();

    private:
        friend class PulseConnection;
        PulseConnection& connection;
        std::function<void()> lost;
        std::function<void()> refreshed;
    };

    // Shared by all that capture on the calling thread, so that they have one client thread.
    static std::shared_ptr<PulseConnection> ofThisThread();

    PulseConnection();
    PulseConnection(const PulseConnection&) = delete;
    PulseConnection& operator=(const PulseConnection&) = delete;
    ~PulseConnection();

    // How long to wait for the server to answer, and for a stream to open with all it takes. The
    // recorder looks at the far side and at the microphone in a row, and has to react to its user
    // within 2 s.
    Clock::time_point answerDeadline() const;
    Clock::time_point openDeadline() const;

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
    Clock::time_point deadlineAfter(std::chrono::milliseconds patience) const;
    bool connect(Clock::time_point deadline);
    void contextChanged();
    bool ask(Clock::time_point deadline);

    std::list<Watch*> watches;
    PulseHandle<pa_threaded_mainloop> loop;
    std::unique_ptr<PulseContext> context;
    std::unique_ptr<ServerQuery> query; // unanswered
    ServerSnapshot known;
    bool isFresh = false;  // the last query was answered
    bool wasReady = false; // the context, before it fails
    bool isUnresponsive = false;
};

} // namespace qn

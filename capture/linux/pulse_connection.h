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

// The connection to the sound server, opened on first use and reopened after it broke. The owner's
// thread calls it while holding a Lock; callbacks come on the client library's own thread, under
// the same lock. No wait exceeds its deadline, whatever the server does.
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

    // Calls its two functions on the client library's thread, as long as it exists.
    class Watch {
    public:
        // `lost` is called when a ready connection breaks, `refreshed` when the snapshot is new.
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

    // The one connection, with one client thread, that everything on the calling thread shares.
    static std::shared_ptr<PulseConnection> ofThisThread();

    PulseConnection();
    PulseConnection(const PulseConnection&) = delete;
    PulseConnection& operator=(const PulseConnection&) = delete;
    ~PulseConnection();

    // Deadlines, from now, for an answer and for opening a stream, its queries included. The
    // recorder looks after far side and microphone in turn and must react to its user within 2 s.
    Clock::time_point answerDeadline() const;
    Clock::time_point openDeadline() const;

    // Brings the snapshot up to date; false if the server does not answer in time.
    bool refresh(Clock::time_point deadline);

    // The server's last answer; empty without a connection.
    const ServerSnapshot& snapshot() const { return known; }

    // Whether the last refresh went unanswered although the connection had not failed.
    bool unresponsive() const { return isUnresponsive; }

    // Null if the connection is not ready.
    pa_context* readyContext() const;

    pa_mainloop_api* loopApi() const { return pa_threaded_mainloop_get_api(loop.get()); }

    // Waits until `condition` holds, tested under the lock and after every wake(); false at the
    // deadline.
    bool waitFor(const std::function<bool()>& condition, Clock::time_point deadline);

    // Makes waitFor test its condition again. Only for the client library's thread.
    void wake() { pa_threaded_mainloop_signal(loop.get(), 0); }

private:
    Clock::time_point deadlineAfter(std::chrono::milliseconds patience) const;
    bool connect(Clock::time_point deadline);
    void contextChanged();
    bool ask(Clock::time_point deadline);

    std::list<Watch*> watches;
    PulseHandle<pa_threaded_mainloop> loop;
    std::unique_ptr<PulseContext> context;
    std::unique_ptr<ServerQuery> query; // awaiting its answer, or null
    ServerSnapshot known;
    bool isFresh = false;  // the last query was answered
    bool wasReady = false; // the context has been ready and its loss not yet reported
    bool isUnresponsive = false;
};

} // namespace qn

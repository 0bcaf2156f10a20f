#pragma once

#include <pulse/pulseaudio.h>

#include <QtGlobal>

#include <chrono>
#include <functional>

namespace qn {

// A single-shot timer on the client library's thread; used under the main loop's lock.
class PulseTimer {
public:
    PulseTimer(pa_mainloop_api* api, pa_context* connectedContext,
               std::function<void()> whenExpired);
    PulseTimer(const PulseTimer&) = delete;
    PulseTimer& operator=(const PulseTimer&) = delete;
    ~PulseTimer() { loop->time_free(event); }

    // Starts the timer, or restarts it if it is running.
    void start(std::chrono::microseconds delay);

private:
    pa_mainloop_api* loop;
    pa_context* context;
    std::function<void()> expired;
    pa_time_event* event;
};

} // namespace qn

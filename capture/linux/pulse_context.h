#pragma once

#include "capture/linux/pulse_handles.h"

#include <functional>

namespace qn {

// One attempt to connect to the sound server, and the connection it leads to. It never reconnects.
// Used under the main loop's lock.
class PulseContext {
public:
    // `stateChanged` is called on the main loop's thread, never from within a call to this class.
    PulseContext(pa_mainloop_api* loop, std::function<void()> stateChanged);
    PulseContext(const PulseContext&) = delete;
    PulseContext& operator=(const PulseContext&) = delete;
    ~PulseContext() = default;

    pa_context* get() const { return context.get(); }
    bool isReady() const { return pa_context_get_state(context.get()) == PA_CONTEXT_READY; }
    bool isFailed() const { return !PA_CONTEXT_IS_GOOD(pa_context_get_state(context.get())); }

private:
    std::function<void()> changed;
    PulseHandle<pa_context> context;
};

} // namespace qn

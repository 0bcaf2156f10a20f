#pragma once

#include <pulse/pulseaudio.h>

#include <memory>

namespace qn {

// Owners of the client library's objects. All but the main loop and property lists must be
// destroyed with the main loop's lock held or on its thread.

struct PulseRelease {
    void operator()(pa_threaded_mainloop* loop) const { pa_threaded_mainloop_free(loop); }
    void operator()(pa_proplist* list) const { pa_proplist_free(list); }
    void operator()(pa_context* context) const {
        pa_context_set_state_callback(context, nullptr, nullptr);
        pa_context_set_subscribe_callback(context, nullptr, nullptr);
        pa_context_disconnect(context);
        pa_context_unref(context);
    }
    void operator()(pa_stream* stream) const {
        pa_stream_set_state_callback(stream, nullptr, nullptr);
        pa_stream_set_moved_callback(stream, nullptr, nullptr);
        pa_stream_set_read_callback(stream, nullptr, nullptr);
        pa_stream_disconnect(stream);
        pa_stream_unref(stream);
    }
    void operator()(pa_operation* operation) const {
        pa_operation_cancel(operation);
        pa_operation_unref(operation);
    }
};

template <typename T> using PulseHandle = std::unique_ptr<T, PulseRelease>;

} // namespace qn

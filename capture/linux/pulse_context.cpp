#include "capture/linux/pulse_context.h"

#include <utility>

namespace qn {

PulseContext::PulseContext(pa_mainloop_api* loop, std::function<void()> stateChanged)
    : changed(std::move(stateChanged)) {
    const PulseHandle<pa_proplist> properties(pa_proplist_new());
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_NAME, "Quorlin");
    context.reset(pa_context_new_with_proplist(loop, nullptr, properties.get()));
    pa_context_connect(context.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr);
    pa_context_set_state_callback(
        context.get(), [](pa_context*, void* self) { static_cast<PulseContext*>(self)->changed(); },
        this);
}

} // namespace qn

#include "capture/linux/pulse_timer.h"

#include <algorithm>
#include <utility>

namespace qn {

namespace {

void expire(pa_mainloop_api*, pa_time_event*, const timeval*, void* expired) {
    (*static_cast<std::function<void()>*>(expired))();
}

} // namespace

PulseTimer::PulseTimer(pa_mainloop_api* api, pa_context* connectedContext,
                       std::function<void()> whenExpired)
    : loop(api),
      context(connectedContext),
      expired(std::move(whenExpired)),
      event(pa_context_rttime_new(context, PA_USEC_INVALID, expire, &expired)) {}

void PulseTimer::start(std::chrono::microseconds delay) {
    const auto usec = static_cast<pa_usec_t>(std::max<qint64>(delay.count(), 0));
    pa_context_rttime_restart(context, event, pa_rtclock_now() + usec);
}

} // namespace qn

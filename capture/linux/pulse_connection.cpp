#include "capture/linux/pulse_connection.h"

#include "capture/linux/pulse_timer.h"

#include <optional>
#include <utility>

namespace qn {

using namespace std::chrono_literals;

namespace {

constexpr auto kAnswerPatience = 350ms;
constexpr auto kOpenPatience = 600ms;
constexpr auto kNoPatience = 50ms; // for a server that left the last refresh unanswered

} // namespace

PulseConnection::Lock::Lock(const PulseConnection& connection) : loop(connection.loop.get()) {
    pa_threaded_mainloop_lock(loop);
}

PulseConnection::Lock::~Lock() {
    pa_threaded_mainloop_unlock(loop);
}

PulseConnection::Watch::Watch(PulseConnection& watched, std::function<void()> whenLost,
                              std::function<void()> whenRefreshed)
    : connection(watched), lost(std::move(whenLost)), refreshed(std::move(whenRefreshed)) {
    const Lock lock(connection);
    connection.watches.push_back(this);
}

PulseConnection::Watch::~Watch() {
    const Lock lock(connection);
    connection.watches.remove(this);
}

std::shared_ptr<PulseConnection> PulseConnection::ofThisThread() {
    thread_local std::weak_ptr<PulseConnection> shared;
    std::shared_ptr<PulseConnection> connection = shared.lock();
    if (!connection) {
        connection = std::make_shared<PulseConnection>();
        shared = connection;
    }
    return connection;
}

PulseConnection::PulseConnection() : loop(pa_threaded_mainloop_new()) {
    pa_threaded_mainloop_set_name(loop.get(), "quorlin-pulse");
    pa_threaded_mainloop_start(loop.get());
}

PulseConnection::~PulseConnection() {
    {
        const Lock lock(*this);
        query.reset();
        context.reset();
    }
    pa_threaded_mainloop_stop(loop.get());
}

pa_context* PulseConnection::readyContext() const {
    return context && context->isReady() ? context->get() : nullptr;
}

PulseConnection::Clock::time_point
PulseConnection::deadlineAfter(std::chrono::milliseconds patience) const {
    return Clock::now() + (isUnresponsive ? kNoPatience : patience);
}

PulseConnection::Clock::time_point PulseConnection::answerDeadline() const {
    return deadlineAfter(kAnswerPatience);
}

PulseConnection::Clock::time_point PulseConnection::openDeadline() const {
    return deadlineAfter(kOpenPatience);
}

bool PulseConnection::refresh(Clock::time_point deadline) {
    const bool succeeded = connect(deadline) && ask(deadline);
    isUnresponsive = !succeeded && !context->isFailed();
    return succeeded;
}

bool PulseConnection::connect(Clock::time_point deadline) {
    if (!context || context->isFailed())
        context = std::make_unique<PulseContext>(loopApi(), [this] { contextChanged(); });
    return waitFor([this] { return context->isReady() || context->isFailed(); }, deadline) &&
           context->isReady();
}

void PulseConnection::contextChanged() {
    if (context->isReady())
        wasReady = true;
    if (context->isFailed()) {
        query.reset();
        known = {};
        if (std::exchange(wasReady, false)) {
            for (const Watch* watch : watches)
                watch->lost();
        }
    }
    wake();
}

bool PulseConnection::ask(Clock::time_point deadline) {
    const auto idle = [this] { return !query; };
    if (!waitFor(idle, deadline) ||
        !readyContext()) // an earlier query may still wait for its answer
        return false;
    isFresh = false;
    query = std::make_unique<ServerQuery>(context->get(), [this](auto answer) {
        isFresh = answer.has_value();
        if (isFresh) {
            known = std::move(*answer);
            for (const Watch* watch : watches)
                watch->refreshed();
        }
        query.reset();
        wake();
    });
    return waitFor(idle, deadline) && isFresh;
}

bool PulseConnection::waitFor(const std::function<bool()>& condition, Clock::time_point deadline) {
    PulseTimer alarm(loopApi(), context->get(), [this] { wake(); });
    alarm.start(std::chrono::duration_cast<std::chrono::microseconds>(deadline - Clock::now()));
    while (!condition()) {
        if (Clock::now() >= deadline)
            return false;
        pa_threaded_mainloop_wait(loop.get());
    }
    return true;
}

} // namespace qn

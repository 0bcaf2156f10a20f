#include "capture/linux/application_capture.h"

#include "capture/linux/pulse_catalog.h"

#include <algorithm>
#include <utility>

namespace qn {

using namespace std::chrono_literals;

namespace {

// Time without events before streams are opened: PipeWire leaves a recording silent that is opened
// while its links still change.
constexpr auto kQuietTime = 150ms;

// Checked regularly too, because the server does not announce every change.
constexpr auto kCheckInterval = 500ms;

} // namespace

ApplicationCapture::ApplicationCapture(const PulseConnection& connection, QString application,
                                       QString processId, BlockReceiver blockReceiver)
    : context(connection.readyContext()),
      loop(connection.loopApi()),
      applicationId(std::move(application)),
      ownProcessId(std::move(processId)),
      receiver(std::move(blockReceiver)),
      quiet(loop, context, [this] { check(); }),
      interval(loop, context, [this] { check(); }) {
    subscribe();
    follow(connection.snapshot());
    interval.start(kCheckInterval);
}

ApplicationCapture::~ApplicationCapture() {
    pa_context_set_subscribe_callback(context, nullptr, nullptr);
    const PulseHandle<pa_operation> cancelled(
        pa_context_subscribe(context, PA_SUBSCRIPTION_MASK_NULL, nullptr, nullptr));
}

void ApplicationCapture::subscribe() {
    const auto changed = [](pa_context*, pa_subscription_event_type_t, uint32_t, void* self) {
        static_cast<ApplicationCapture*>(self)->quiet.start(kQuietTime);
    };
    pa_context_set_subscribe_callback(context, changed, this);
    const PulseHandle<pa_operation> requested(
        pa_context_subscribe(context, PA_SUBSCRIPTION_MASK_SINK_INPUT, nullptr, nullptr));
}

void ApplicationCapture::check() {
    interval.start(kCheckInterval);
    if (query)
        return;
    query = std::make_unique<ServerQuery>(context, [this](auto snapshot) {
        query.reset();
        if (snapshot)
            follow(*snapshot);
    });
}

void ApplicationCapture::follow(const ServerSnapshot& snapshot) {
    QHash<quint32, OpenRecording> known;
    for (const auto& [index, open] : openStreams)
        known.insert(index, {open.sink, open.stream->isBroken()});
    const QList<InputFacts> inputs = inputsOf(snapshot, applicationId, ownProcessId);
    const StreamPlan plan = planStreams(known, inputs);
    for (const quint32 index : plan.close)
        openStreams.erase(index);
    for (const InputFacts& input : inputs) {
        if (plan.open.contains(input.index))
            open(input, snapshot);
    }
}

void ApplicationCapture::open(const InputFacts& input, const ServerSnapshot& snapshot) {
    const DeviceFacts* played = findDevice(snapshot.sinks, input.sink);
    if (!played)
        return;
    const int slot = freeSlot();
    const RecordTarget target{*played, input.index, QString::number(slot)};
    auto stream =
        std::make_unique<RecordStream>(loop, target, RecordStream::Callbacks{receiver, [] {}});
    openStreams.emplace(input.index, OpenStream{input.sink, slot, std::move(stream)});
}

int ApplicationCapture::freeSlot() const {
    int slot = 0;
    const auto uses = [&](const auto& entry) { return entry.second.slot == slot; };
    while (std::any_of(openStreams.begin(), openStreams.end(), uses))
        ++slot;
    return slot;
}

} // namespace qn

#include "capture/linux/server_snapshot.h"

#include <algorithm>

namespace qn {

namespace {

template <typename Matches>
const SinkFacts* findSinkIf(const ServerSnapshot& snapshot, Matches matches) {
    const auto found = std::find_if(snapshot.sinks.begin(), snapshot.sinks.end(), matches);
    return found == snapshot.sinks.end() ? nullptr : &*found;
}

} // namespace

ProgramFacts programFacts(const pa_proplist* properties) {
    const auto text = [&](const char* key) {
        return QString::fromUtf8(pa_proplist_gets(properties, key));
    };
    return {text("pipewire.access.portal.app_id"), text(PA_PROP_APPLICATION_PROCESS_BINARY),
            text(PA_PROP_APPLICATION_ID), text(PA_PROP_APPLICATION_NAME),
            text(PA_PROP_APPLICATION_PROCESS_ID)};
}

const SinkFacts* findSink(const ServerSnapshot& snapshot, const QString& name) {
    return findSinkIf(snapshot, [&](const SinkFacts& sink) { return sink.name == name; });
}

const SinkFacts* findSink(const ServerSnapshot& snapshot, quint32 index) {
    return findSinkIf(snapshot, [&](const SinkFacts& sink) { return sink.index == index; });
}

} // namespace qn

#include "capture/linux/server_query.h"

#include <utility>

namespace qn {

namespace {

// Leaves out a device that can't be recorded: what the server reports may be invalid.
template <typename Info>
void addDevice(QList<DeviceFacts>& devices, const Info& info, const char* source, bool isMonitor) {
    if (pa_sample_spec_valid(&info.sample_spec) != 0 &&
        pa_channel_map_compatible(&info.channel_map, &info.sample_spec) != 0)
        devices.append({info.index, QString::fromUtf8(info.name),
                        QString::fromUtf8(info.description), QByteArray(source), info.sample_spec,
                        info.channel_map, isMonitor});
}

} // namespace

ServerQuery::ServerQuery(pa_context* context, Done whenDone) : done(std::move(whenDone)) {
    operations[0].reset(pa_context_get_server_info(context, takeServer, this));
    operations[1].reset(pa_context_get_sink_info_list(context, takeSink, this));
    operations[2].reset(pa_context_get_source_info_list(context, takeSource, this));
    operations[3].reset(pa_context_get_client_info_list(context, takeClient, this));
    operations[4].reset(pa_context_get_sink_input_info_list(context, takeInput, this));
}

template <typename Info, typename Add>
void ServerQuery::take(void* query, const Info* info, int end, Add add) {
    auto& self = *static_cast<ServerQuery*>(query);
    if (end == 0)
        add(self.snapshot, *info);
    else
        self.answered(end > 0);
}

void ServerQuery::takeServer(pa_context*, const pa_server_info* info, void* query) {
    auto& self = *static_cast<ServerQuery*>(query);
    if (info) {
        self.snapshot.defaultSink = QString::fromUtf8(info->default_sink_name);
        self.snapshot.defaultSource = QString::fromUtf8(info->default_source_name);
    }
    self.answered(info != nullptr);
}

void ServerQuery::takeSink(pa_context*, const pa_sink_info* info, int end, void* query) {
    take(query, info, end, [](ServerSnapshot& lists, const pa_sink_info& sink) {
        addDevice(lists.sinks, sink, sink.monitor_source_name, false);
    });
}

void ServerQuery::takeSource(pa_context*, const pa_source_info* info, int end, void* query) {
    take(query, info, end, [](ServerSnapshot& lists, const pa_source_info& source) {
        addDevice(lists.sources, source, source.name, source.monitor_of_sink != PA_INVALID_INDEX);
    });
}

void ServerQuery::takeClient(pa_context*, const pa_client_info* info, int end, void* query) {
    take(query, info, end, [](ServerSnapshot& lists, const pa_client_info& client) {
        lists.clients.insert(client.index, programFacts(client.proplist));
    });
}

void ServerQuery::takeInput(pa_context*, const pa_sink_input_info* info, int end, void* query) {
    take(query, info, end, [](ServerSnapshot& lists, const pa_sink_input_info& input) {
        lists.inputs.append({input.index, input.sink, input.client, programFacts(input.proplist)});
    });
}

void ServerQuery::answered(bool complete) {
    isComplete = isComplete && complete;
    if (--awaited > 0)
        return;
    const Done finished = std::move(done);
    finished(isComplete ? std::optional(std::move(snapshot)) : std::nullopt);
}

} // namespace qn

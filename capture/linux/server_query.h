#pragma once

#include "capture/linux/pulse_handles.h"
#include "capture/linux/server_snapshot.h"

#include <array>
#include <functional>
#include <optional>

namespace qn {

// Asks the server for everything a ServerSnapshot holds, in one round trip. Created, destroyed
// (which cancels it) and finished under the main loop's lock.
class ServerQuery {
public:
    // Called once, without a snapshot if the server refused or was lost; may destroy the query.
    using Done = std::function<void(std::optional<ServerSnapshot>)>;

    ServerQuery(pa_context* context, Done whenDone);
    ServerQuery(const ServerQuery&) = delete;
    ServerQuery& operator=(const ServerQuery&) = delete;
    ~ServerQuery() = default;

private:
    template <typename Info, typename Add>
    static void take(void* query, const Info* info, int end, Add add);
    static void takeServer(pa_context*, const pa_server_info* info, void* query);
    static void takeSink(pa_context*, const pa_sink_info* info, int end, void* query);
    static void takeSource(pa_context*, const pa_source_info* info, int end, void* query);
    static void takeClient(pa_context*, const pa_client_info* info, int end, void* query);
    static void takeInput(pa_context*, const pa_sink_input_info* info, int end, void* query);
    void answered(bool complete);

    ServerSnapshot snapshot;
    Done done;
    int awaited = 5;
    bool isComplete = true;
    std::array<PulseHandle<pa_operation>, 5> operations;
};

} // namespace qn
